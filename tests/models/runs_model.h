// Runs, run morphology and connected components of bitonal images, one pixel at a time; and the
// order rules of the index-linked list.
//
// Zones are columns [x0, x1) and rows [y0, y1). Runs are half-open. The morphology takes the
// arguments of the library's operations without the error log, and keeps every pixel outside the
// zone.
#pragma once

#include <algorithm>
#include <cstddef>
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

inline int paint_span(unsigned char* row, int x, int length, int value) {
    for (int i = x; i < x + length; ++i) set_bit(row, 0, i, 0, value == 1);
    return 0;
}

template <typename Combine>
int combine_buffers(unsigned char* dst, const unsigned char* src, int rows, int stride,
                    Combine combine) {
    for (std::size_t i = 0; i < offset(rows, stride, 0); ++i)
        for (int bit = 0; bit < 8; ++bit)
            set_bit(dst + i, 0, bit, 0,
                    combine(get_bit(dst + i, 0, bit, 0), get_bit(src + i, 0, bit, 0)));
    return 0;
}
inline int and_buffers(unsigned char* dst, const unsigned char* src, int rows, int stride) {
    return combine_buffers(dst, src, rows, stride, [](bool d, bool s) { return d && s; });
}
inline int and_not_buffers(unsigned char* dst, const unsigned char* src, int rows, int stride) {
    return combine_buffers(dst, src, rows, stride, [](bool d, bool s) { return d && !s; });
}
inline int or_buffers(unsigned char* dst, const unsigned char* src, int rows, int stride) {
    return combine_buffers(dst, src, rows, stride, [](bool d, bool s) { return d || s; });
}
inline int xor_buffers(unsigned char* dst, const unsigned char* src, int rows, int stride) {
    return combine_buffers(dst, src, rows, stride, [](bool d, bool s) { return d != s; });
}

inline long long count_black_pixels(const unsigned char* image, int rows, int stride) {
    long long count = 0;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < 8 * stride; ++x) count += get_bit(image, stride, x, y) ? 1 : 0;
    return count;
}

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

using LineRule = Line (*)(const Line&, int);

inline int along_rows(LineRule rule, int n, unsigned char* image, int stride, int x0, int x1,
                      int y0, int y1) {
    if (n == 0 || x0 >= x1 || y0 >= y1) return 0;
    for (int y = y0; y < y1; ++y) {
        Line line;
        for (int x = x0; x < x1; ++x) line.push_back(get_bit(image, stride, x, y) ? 1 : 0);
        line = rule(line, n);
        for (int x = x0; x < x1; ++x)
            set_bit(image, stride, x, y, line[static_cast<std::size_t>(x - x0)] != 0);
    }
    return 0;
}
inline int along_columns(LineRule rule, int n, unsigned char* image, int stride, int x0, int x1,
                         int y0, int y1) {
    if (n == 0 || x0 >= x1 || y0 >= y1) return 0;
    for (int x = x0; x < x1; ++x) {
        Line line;
        for (int y = y0; y < y1; ++y) line.push_back(get_bit(image, stride, x, y) ? 1 : 0);
        line = rule(line, n);
        for (int y = y0; y < y1; ++y)
            set_bit(image, stride, x, y, line[static_cast<std::size_t>(y - y0)] != 0);
    }
    return 0;
}

inline int h_fill_gaps(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_rows(fill_gaps, n, image, stride, x0, x1, y0, y1);
}
inline int h_remove_short(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_rows(remove_short, n, image, stride, x0, x1, y0, y1);
}
inline int h_dilate(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_rows(dilate, n, image, stride, x0, x1, y0, y1);
}
inline int h_erode(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_rows(erode, n, image, stride, x0, x1, y0, y1);
}
inline int v_fill_gaps(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_columns(fill_gaps, n, image, stride, x0, x1, y0, y1);
}
inline int v_remove_short(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_columns(remove_short, n, image, stride, x0, x1, y0, y1);
}
inline int v_dilate(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_columns(dilate, n, image, stride, x0, x1, y0, y1);
}
inline int v_erode(int n, unsigned char* image, int stride, int x0, int x1, int y0, int y1) {
    return along_columns(erode, n, image, stride, x0, x1, y0, y1);
}

}  // namespace model
