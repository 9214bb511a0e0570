// A row of pixels between other rows: weighted in whole numbers, or interpolated linearly or
// cubically in double precision. plain/blend_rows.h says what each function computes.
//
// Use: for the pixels of a row between two others, or, after an exchange of rows and columns, for
// those of a column. What a position needs is prepared once with linear_weights() or
// cubic_weights() and serves all rows.
//
// Keep true: out overlaps no row. Nothing is read or written beyond the `width` pixels. Values are
// cut off towards zero, then clamped to 0 .. 255.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// The row wanted lies at or behind p1 and before p2. Only cubic weights touch p0 and p3.
struct Neighbours {
    const std::uint8_t* p0;
    const std::uint8_t* p1;
    const std::uint8_t* p2;
    const std::uint8_t* p3;
};

// (-outer0 * p0 + inner1 * p1 + inner2 * p2 - outer3 * p3) / divisor. The divisor is 2, 3, 4, 16,
// 27, 54 or 128; the inner weights add up to at most 9 / 8 of it, and 257, the outer ones too.
struct WholeWeights {
    std::uint8_t outer0;
    std::uint8_t inner1;
    std::uint8_t inner2;
    std::uint8_t outer3;
    std::uint8_t divisor;
};

void weigh_rows(const Neighbours& rows, const WholeWeights& weights, std::size_t width,
                std::uint8_t* out);

// At `t` between p1 and p2, 0 <= t < 1.
struct LinearWeights {
    double t;
    // floor(multiplier * d / 65536) is floor(t * d) for every difference d of two pixels; 0: not
    // known, because sums of products with t are rounded.
    std::uint16_t multiplier;
};

struct CubicWeights {
    double t;
    float rest[3];  // the weights of p0, p2 and p3; that of p1 makes them add up to 1
};

LinearWeights linear_weights(double t);
CubicWeights cubic_weights(double t);

void linear_rows(const Neighbours& rows, const LinearWeights& weights, std::size_t width,
                 std::uint8_t* out);
void cubic_rows(const Neighbours& rows, const CubicWeights& weights, std::size_t width,
                std::uint8_t* out);

}  // namespace simd
