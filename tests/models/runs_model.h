// Run morphology and combined buffers of bitonal images, one pixel and one byte at a time.
//
// Zones are columns [x0, x1) and rows [y0, y1). The morphology takes the arguments of the library's
// operations without the error log, and keeps every pixel outside the zone.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "pixels.h"

namespace model {

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

template <Line (*rule)(const Line&, int), bool kRows>
int along(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    if (n == 0) return 0;
    for (int at = kRows ? y0 : x0; at < (kRows ? y1 : x1); ++at) {
        const int begin = kRows ? x0 : y0;
        Line line;
        for (int i = begin; i < (kRows ? x1 : y1); ++i)
            line.push_back(get_bit(image, stride, kRows ? i : at, kRows ? at : i) ? 1 : 0);
        line = rule(line, n);
        for (int i = begin; i < (kRows ? x1 : y1); ++i)
            set_bit(image, stride, kRows ? i : at, kRows ? at : i,
                    line[static_cast<std::size_t>(i - begin)] != 0);
    }
    return 0;
}

inline constexpr auto h_fill_gaps = along<fill_gaps, true>;
inline constexpr auto h_remove_short = along<remove_short, true>;
inline constexpr auto h_dilate = along<dilate, true>;
inline constexpr auto h_erode = along<erode, true>;
inline constexpr auto v_fill_gaps = along<fill_gaps, false>;
inline constexpr auto v_remove_short = along<remove_short, false>;
inline constexpr auto v_dilate = along<dilate, false>;
inline constexpr auto v_erode = along<erode, false>;

}  // namespace model
