// The bitonal rotation that lines up with the rotation of grey and colour pages: two or three
// whole-pixel shears, one pixel at a time.
//
// The result is one block of H1 rows of 4 * ceil(W2 / 32) bytes at `dst`, whatever
// `out_bytes_per_line` says; bytes after it are not written. An upright page is copied into the
// whole destination at its own stride, provided it is large enough.
#pragma once

#include <cmath>
#include <cstdlib>

#include "deskew_model.h"
#include "pixels.h"

namespace model {

inline double skew_angle(int yskew) {
    const double x = yskew / 512.0;
    return x / (1 + 0.28 * (x * x));
}

inline double shear_tangent(double a) {
    const double b = a * a;
    return a *
           (1 + b * (0.3333314036 +
                     b * (0.1333923995 +
                          b * (0.0533740603 +
                               b * (0.0245650893 + b * (0.002900525 + b * 0.00951680913567543))))));
}

inline double shear_sine(double a) {
    const double b = a * a;
    return a + a * b *
                   (-0.16666666640797048 + 0.008333329304842563 * b +
                    b * b * (-0.00019839312269456257 + 2.718121627547973e-6 * b));
}

inline int floor_shift(int position, double slope) {
    return static_cast<int>(std::floor((position + 0.5) * slope));
}

// What a side of `length` rows or columns grows by when sheared.
inline int shear_growth(int length, double slope) {
    return std::abs(floor_shift(length - 1, slope));
}

inline Bits shear_rows(const Bits& from, double slope) {
    const int growth = shear_growth(from.height, slope);
    const int base = slope < 0 ? growth : 0;
    Bits to(from.height, from.width + growth);
    for (int y = 0; y < from.height; ++y)
        for (int x = 0; x < from.width; ++x)
            if (from.get(x, y)) to.set(x + floor_shift(y, slope) + base, y, true);
    return to;
}

inline Bits transposed(const Bits& from) {
    Bits to(from.width, from.height);
    for (int y = 0; y < from.height; ++y)
        for (int x = 0; x < from.width; ++x) to.set(y, x, from.get(x, y));
    return to;
}

inline Bits shear_columns(const Bits& from, double slope) {
    return transposed(shear_rows(transposed(from), slope));
}

struct AlignedShears {
    bool three;
    double row_slope;
    double column_slope;

    explicit AlignedShears(int yskew) : three(std::abs(yskew) > 25) {
        const double angle = skew_angle(yskew);
        row_slope = -shear_tangent(three ? angle / 2 : angle);
        column_slope = shear_sine(angle);
    }
    void measure(int height, int width, int& out_height, int& out_width) const {
        out_width = width + shear_growth(height, row_slope);
        out_height = height + shear_growth(out_width, column_slope);
        if (three) out_width += shear_growth(out_height, row_slope);
    }
};

inline int skew_binary_image_aligned_with_skrotimg_mem(
    int skew, int scale, const unsigned char* src, int height, int width, int bytes_per_line,
    unsigned char* dst, int out_height, int out_width, int out_bytes_per_line, Progress progress) {
    if (!strides_fit(width, bytes_per_line, out_width, out_bytes_per_line)) return -2;
    const int yskew = skew_unit(skew, scale);
    if (yskew == 0) {
        if (out_height < height || out_width < width) return -1;
        copy_upright(src, height, width, bytes_per_line, dst, out_height, out_bytes_per_line,
                     progress);
        return 0;
    }
    if (std::abs(yskew) > 96) return -1;
    const AlignedShears shears(yskew);
    int h1 = 0;
    int w2 = 0;
    shears.measure(height, width, h1, w2);
    if (w2 > out_width || h1 > out_height) return -1;

    report(progress, 0, 3);
    Bits page = shear_rows(unpack(src, height, width, bytes_per_line), shears.row_slope);
    report(progress, 1, 3);
    page = shear_columns(page, shears.column_slope);
    report(progress, 2, 3);
    if (shears.three) page = shear_rows(page, shears.row_slope);
    const int stride = word_stride(w2);
    for (int y = 0; y < h1; ++y)
        for (int x = 0; x < 8 * stride; ++x) set_bit(dst, stride, x, y, page.get(x, y));
    report(progress, 3, 3);
    return 0;
}

}  // namespace model
