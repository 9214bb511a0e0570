// Runs and run morphology of bitonal images, one pixel at a time.
//
// Zones are columns [x0, x1) and rows [y0, y1). Runs are half-open. The morphology takes the
// arguments of the library's operations without the error log, and keeps every pixel outside the
// zone.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "pixels.h"

namespace model {

// Runs of ink of `width` pixels from `x_start`, as (start, exclusive end) pairs in absolute
// positions; the result is the number of ints written. Zero as `ink_value` makes 1-bits the ink,
// anything else 0-bits.
inline int extract_runs(int ink_value, const unsigned char* row, int x_start, int width, int* out) {
    const bool ink = ink_value == 0;
    int written = 0;
    bool inside = false;
    for (int x = x_start; x < x_start + width; ++x) {
        const bool now = get_bit(row, 0, x, 0) == ink;
        if (now != inside) out[written++] = x;
        inside = now;
    }
    if (inside) out[written++] = x_start + width;
    return written;
}

template <class Combine>
int combine_buffers(unsigned char* dst, const unsigned char* src, int rows, int stride) {
    for (std::size_t i = 0; i < offset(rows, stride, 0); ++i)
        dst[i] = static_cast<unsigned char>(Combine()(dst[i], src[i]));
    return 0;
}

struct AndNot {
    int operator()(int d, int s) const { return d & ~s; }
};

inline constexpr auto and_buffers = combine_buffers<std::bit_and<int>>;
inline constexpr auto and_not_buffers = combine_buffers<AndNot>;
inline constexpr auto or_buffers = combine_buffers<std::bit_or<int>>;
inline constexpr auto xor_buffers = combine_buffers<std::bit_xor<int>>;

using Line = std::vector<char>;

// Maximal stretches of `value` in a line.
inline std::vector<std::pair<int, int>> stretches(const Line& line, char value) {
    std::vector<std::pair<int, int>> found;
    const int n = static_cast<int>(line.size());
    for (int i = 0; i < n; ++i) {
        if (line[static_cast<std::size_t>(i)] != value) continue;
        const int start = i;
        while (i < n && line[static_cast<std::size_t>(i)] == value) ++i;
        found.push_back({start, i});
    }
    return found;
}

inline void paint(Line& line, int start, int end, char value) {
    for (int i = std::max(start, 0); i < std::min(end, static_cast<int>(line.size())); ++i)
        line[static_cast<std::size_t>(i)] = value;
}

inline Line fill_gaps(const Line& line, int n) {
    Line result = line;
    for (auto [s, e] : stretches(line, 0))
        if (s > 0 && e < static_cast<int>(line.size()) && e - s < n) paint(result, s, e, 1);
    return result;
}
inline Line remove_short(const Line& line, int n) {
    Line result = line;
    for (auto [s, e] : stretches(line, 1))
        if (e - s < n) paint(result, s, e, 0);
    return result;
}
inline Line dilate(const Line& line, int n) {
    Line result = line;
    for (auto [s, e] : stretches(line, 1)) paint(result, s - n, e + n, 1);
    return result;
}
inline Line erode(const Line& line, int n) {
    Line result(line.size(), 0);
    for (auto [s, e] : stretches(line, 1))
        if (s + n < e - n) paint(result, s + n, e - n, 1);
    return result;
}

template <Line (*rule)(const Line&, int)>
int along_rows(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    if (n == 0) return 0;
    for (int y = y0; y < y1; ++y) {
        Line line;
        for (int x = x0; x < x1; ++x) line.push_back(get_bit(image, stride, x, y) ? 1 : 0);
        line = rule(line, n);
        for (int x = x0; x < x1; ++x)
            set_bit(image, stride, x, y, line[static_cast<std::size_t>(x - x0)] != 0);
    }
    return 0;
}
template <Line (*rule)(const Line&, int)>
int along_columns(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    if (n == 0) return 0;
    for (int x = x0; x < x1; ++x) {
        Line line;
        for (int y = y0; y < y1; ++y) line.push_back(get_bit(image, stride, x, y) ? 1 : 0);
        line = rule(line, n);
        for (int y = y0; y < y1; ++y)
            set_bit(image, stride, x, y, line[static_cast<std::size_t>(y - y0)] != 0);
    }
    return 0;
}

inline constexpr auto h_fill_gaps = along_rows<fill_gaps>;
inline constexpr auto h_remove_short = along_rows<remove_short>;
inline constexpr auto h_dilate = along_rows<dilate>;
inline constexpr auto h_erode = along_rows<erode>;
inline constexpr auto v_fill_gaps = along_columns<fill_gaps>;
inline constexpr auto v_remove_short = along_columns<remove_short>;
inline constexpr auto v_dilate = along_columns<dilate>;
inline constexpr auto v_erode = along_columns<erode>;

}  // namespace model
