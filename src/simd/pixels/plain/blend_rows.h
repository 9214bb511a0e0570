// Plain forms of blend_rows.h.
//
// Keep true: the expressions stay in the written order, since a value near a whole number is cut
// off on either side of it.
#pragma once

#include <algorithm>

#include "simd/pixels/blend_rows.h"

namespace simd::plain {

// Between a (t = 0) and b (t = 1), 0 <= t < 1. It is not a + t * (b - a): for some t the sum of
// the two products falls just below a whole number, even where a equals b.
inline std::uint8_t linear(std::uint8_t a, std::uint8_t b, double t) {
    return static_cast<std::uint8_t>((1 - t) * a + t * b);
}

// Between p1 (t = 0) and p2 (t = 1), 0 <= t < 1, with one more neighbour on either side.
//
// Source: R. Keys, Cubic convolution interpolation for digital image processing, IEEE Transactions
// on Acoustics, Speech, and Signal Processing, 1981, with a = -1/2 (Catmull-Rom).
inline std::uint8_t cubic(int p0, int p1, int p2, int p3, double t) {
    const int third = -p0 + 3 * p1 - 3 * p2 + p3;
    const int second = 2 * p0 - 5 * p1 + 4 * p2 - p3;
    const int first = p2 - p0;
    const double value = 0.5 * (((third * t + second) * t + first) * t + 2 * p1);
    return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value), 0, 255));
}

inline void weigh_rows(const Neighbours& rows, const WholeWeights& weights, std::size_t width,
                       std::uint8_t* out) {
    const bool cubic = (weights.outer0 | weights.outer3) != 0;
    for (std::size_t x = 0; x < width; ++x) {
        int sum = weights.inner1 * rows.p1[x] + weights.inner2 * rows.p2[x];
        if (cubic) sum -= weights.outer0 * rows.p0[x] + weights.outer3 * rows.p3[x];
        out[x] = static_cast<std::uint8_t>(std::clamp(sum / weights.divisor, 0, 255));
    }
}

inline void linear_rows(const Neighbours& rows, const LinearWeights& weights, std::size_t width,
                        std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x) out[x] = linear(rows.p1[x], rows.p2[x], weights.t);
}

inline void cubic_rows(const Neighbours& rows, const CubicWeights& weights, std::size_t width,
                       std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x)
        out[x] = cubic(rows.p0[x], rows.p1[x], rows.p2[x], rows.p3[x], weights.t);
}

}  // namespace simd::plain
