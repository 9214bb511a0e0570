// Scaling, one pixel at a time: every row to the target width, then every column to the target
// height.
//
// The arguments and results are those of the exported functions with a number of threads, which is
// of no account. Grey and colour rows are written up to their width, bitonal rows whole. Sizes
// below 1 are refused. Since the exact ratios are told by integer divisions, a side of two pixels
// that is to remain two counts as one of 4 : 3.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>

#include "field.h"
#include "pixels.h"

namespace model {

enum class Filter { kBilinear, kBicubic };

// What lies between pixel `first` and the next one: phase / ratio of the way for the ratios
// 2 : 1, 3 : 2 and 4 : 3 (named by their larger number), else the fraction `t`, in which case the
// ratio is 0.
struct Sample {
    int first;
    int ratio;
    int phase;
    double t;
};

inline Sample sample_at(int position, int source, int target) {
    for (const int ratio : {2, 3, 4}) {
        const int of = ratio - 1;
        if (target == static_cast<long long>(ratio) * source / of)
            return {position * of / ratio, ratio, position * of % ratio, 0};
    }
    const double at = position * (static_cast<double>(source) / target);
    const double first = std::floor(at);
    return {static_cast<int>(first), 0, 0, at - first};
}

inline int linear_between(double t, int a, int b) {
    return static_cast<int>((1 - t) * a + t * b);
}

// Cubic convolution with a = -0.5 (Keys 1981), between p1 and p2.
inline int cubic_between(double t, int p0, int p1, int p2, int p3) {
    const double v =
        0.5 *
        ((((-p0 + 3 * p1 - 3 * p2 + p3) * t + (2 * p0 - 5 * p1 + 4 * p2 - p3)) * t + (p2 - p0)) *
             t +
         2 * p1);
    return std::clamp(static_cast<int>(v), 0, 255);
}

inline int linear(const Sample& s, int a, int b) {
    if (s.ratio == 0) return linear_between(s.t, a, b);
    return ((s.ratio - s.phase) * a + s.phase * b) / s.ratio;
}

inline int cubic(const Sample& s, int p0, int p1, int p2, int p3) {
    if (s.ratio == 0) return cubic_between(s.t, p0, p1, p2, p3);
    if (s.phase == 0) return p1;
    constexpr struct {
        int ratio, phase, of0, of1, of2, of3, all;
    } kWeights[] = {{2, 1, -1, 9, 9, -1, 16},  {3, 1, -4, 42, 18, -2, 54},
                    {3, 2, -1, 9, 21, -2, 27}, {4, 1, -9, 111, 29, -3, 128},
                    {4, 2, -1, 9, 9, -1, 16},  {4, 3, -3, 29, 111, -9, 128}};
    for (const auto& w : kWeights)
        if (w.ratio == s.ratio && w.phase == s.phase)
            return std::clamp((w.of0 * p0 + w.of1 * p1 + w.of2 * p2 + w.of3 * p3) / w.all, 0, 255);
    return -1;
}

inline Field scaled_rows(const Field& from, int width, Filter filter) {
    Field to(from.height, width);
    for_each_cell(to, [&](int y, int x) {
        const Sample s = sample_at(x, from.width, width);
        const auto p = [&](int step) { return from.nearest(y, s.first + step); };
        to.at(y, x) =
            filter == Filter::kBilinear ? linear(s, p(0), p(1)) : cubic(s, p(-1), p(0), p(1), p(2));
    });
    return to;
}

inline Field transposed(const Field& from) {
    Field to(from.width, from.height);
    for_each_cell(from, [&](int y, int x) { to.at(x, y) = from.at(y, x); });
    return to;
}

inline Field scaled(const Field& from, int height, int width, Filter filter) {
    return transposed(scaled_rows(transposed(scaled_rows(from, width, filter)), height, filter));
}

struct Rgb {
    int r, g, b;
};

struct LumaChroma {
    int y, cr, cb;
};

inline LumaChroma luma_chroma(Rgb p) {
    return {(19595 * p.r + 38470 * p.g + 7471 * p.b) >> 16,
            (32768 * p.r - 27440 * p.g - 5328 * p.b) / 65536 + 128,
            (-11056 * p.r - 21712 * p.g + 32768 * p.b) / 65536 + 128};
}

// The green that has the luma, beside the red and blue before they are clamped.
inline Rgb rgb_of_luma(LumaChroma p) {
    const int r = p.y + (p.cr - 128) * 91881 / 65536;
    const int b = p.y + (p.cb - 128) * 116130 / 65536;
    const int g = (65536 * p.y - 19595 * r - 7471 * b) / 38470;
    return {std::clamp(r, 0, 255), std::clamp(g, 0, 255), std::clamp(b, 0, 255)};
}

inline bool sizes_fit(int height, int width, int dst_height, int dst_width) {
    return height >= 1 && width >= 1 && dst_height >= 1 && dst_width >= 1;
}

template <Filter filter>
int scale_grey(const unsigned char* src, int height, int width, int bytes_per_line,
               unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
               int /*nb_threads*/) {
    if (!sizes_fit(height, width, dst_height, dst_width) || bytes_per_line < width ||
        dst_bytes_per_line < dst_width)
        return -1;
    Field grey(height, width);
    for_each_cell(grey, [&](int y, int x) { grey.at(y, x) = src[offset(y, bytes_per_line, x)]; });
    const Field to = scaled(grey, dst_height, dst_width, filter);
    for_each_cell(to, [&](int y, int x) {
        dst[offset(y, dst_bytes_per_line, x)] = static_cast<unsigned char>(to.at(y, x));
    });
    return 0;
}

template <Filter of_luma, Filter of_chroma>
int scale_rgb(const unsigned char* src, int height, int width, int bytes_per_line,
              unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
              int /*nb_threads*/) {
    if (!sizes_fit(height, width, dst_height, dst_width) || bytes_per_line / 3 < width ||
        dst_bytes_per_line / 3 < dst_width)
        return -1;
    Field luma(height, width);
    Field red(height, width);
    Field blue(height, width);
    for_each_cell(luma, [&](int y, int x) {
        const unsigned char* const p = src + offset(y, bytes_per_line, 3 * x);
        const LumaChroma parts = luma_chroma({p[0], p[1], p[2]});
        luma.at(y, x) = parts.y;
        red.at(y, x) = parts.cr;
        blue.at(y, x) = parts.cb;
    });
    luma = scaled(luma, dst_height, dst_width, of_luma);
    red = scaled(red, dst_height, dst_width, of_chroma);
    blue = scaled(blue, dst_height, dst_width, of_chroma);
    for_each_cell(luma, [&](int y, int x) {
        const Rgb colour = rgb_of_luma({luma.at(y, x), red.at(y, x), blue.at(y, x)});
        unsigned char* const p = dst + offset(y, dst_bytes_per_line, 3 * x);
        p[0] = static_cast<unsigned char>(colour.r);
        p[1] = static_cast<unsigned char>(colour.g);
        p[2] = static_cast<unsigned char>(colour.b);
    });
    return 0;
}

template <Filter filter>
int scale_bitonal(const unsigned char* src, int height, int width, int bytes_per_line,
                  unsigned char* dst, int dst_height, int dst_width, int dst_bytes_per_line,
                  int /*nb_threads*/) {
    if (!sizes_fit(height, width, dst_height, dst_width) || bytes_per_line < word_stride(width) ||
        dst_bytes_per_line < word_stride(dst_width))
        return -1;
    Field grey(height, width);
    for_each_cell(
        grey, [&](int y, int x) { grey.at(y, x) = get_bit(src, bytes_per_line, x, y) ? 0 : 255; });
    const Field to = scaled(grey, dst_height, dst_width, filter);
    std::memset(dst, 0, offset(dst_height, dst_bytes_per_line, 0));
    for_each_cell(to, [&](int y, int x) {
        if (to.at(y, x) < 129) set_bit(dst, dst_bytes_per_line, x, y, true);
    });
    return 0;
}

}  // namespace model
