// Plain form of sample_places.h.
#pragma once

#include <cmath>

#include "simd/pixels/plain/blend_rows.h"
#include "simd/pixels/sample_places.h"

namespace simd::plain {

// The pixel at a place that may be outside, or no number.
inline std::int32_t nearest(double place, std::int32_t size) {
    if (!(place > 0)) return 0;
    return place < size ? static_cast<std::int32_t>(place) : size - 1;
}

inline std::uint8_t cubic_in_row(const std::uint8_t* at, double x) {
    return cubic(at[-3], at[0], at[3], at[6], x);
}

inline std::uint8_t cubic_around(const std::uint8_t* at, std::ptrdiff_t stride, double x,
                                 double y) {
    return cubic(cubic_in_row(at - stride, x), cubic_in_row(at, x), cubic_in_row(at + stride, x),
                 cubic_in_row(at + 2 * stride, x), y);
}

inline std::uint8_t linear_around(const std::uint8_t* at, std::ptrdiff_t stride, double x,
                                  double y) {
    return linear(linear(at[0], at[3], x), linear(at[stride], at[stride + 3], x), y);
}

inline void sample_places(const LumaChromaImage& image, const ProjectedPlaces& places,
                          std::size_t count, const LumaChromaRows& out) {
    for (std::size_t i = 0; i < count; ++i) {
        const double x = places.x[i] / places.w[i];
        const double y = places.y[i] / places.w[i];
        const double column = std::floor(x);
        const double row = std::floor(y);
        const std::uint8_t* const pixel = image.data + nearest(row, image.height) * image.stride +
                                          std::ptrdiff_t{3} * nearest(column, image.width);
        // Where there are neighbours; not true of places that are no numbers.
        const bool inside =
            column >= 1 && column + 2 < image.width && row >= 1 && row + 2 < image.height;
        if (inside) {
            out.luma[i] = cubic_around(pixel, image.stride, x - column, y - row);
            out.red[i] = linear_around(pixel + 1, image.stride, x - column, y - row);
            out.blue[i] = linear_around(pixel + 2, image.stride, x - column, y - row);
        } else {
            out.luma[i] = pixel[0];
            out.red[i] = pixel[1];
            out.blue[i] = pixel[2];
        }
    }
}

}  // namespace simd::plain
