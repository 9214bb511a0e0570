// Rows of a map of block thresholds, whose empty cells are 0, on the way to a map without empty
// cells. plain/block_fill.h says what each function computes.
//
// Use: dilate_into_empty() for the inner rows, where filled cells are to be dilated first; then,
// from that map into another one, propagate_forward() for the rows from top to bottom and
// propagate_backward() from bottom to top.
//
// Keep true: output rows do not overlap inputs, except that the row below the last one may be the
// last row itself. Nothing outside of the cells is read or written.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// out = row, but every empty cell that is not the first or the last one takes the largest value of
// the 3 x 3 cells around it.
void dilate_into_empty(const std::uint8_t* above, const std::uint8_t* row,
                       const std::uint8_t* below, std::size_t width, std::uint8_t* out);

// out = cells, but from left to right every empty cell takes the least of its left, upper and upper
// left neighbours in the result, or 255 where it has none that is lower. `above` is the result of
// the row above, or 255 everywhere.
void propagate_forward(const std::uint8_t* cells, const std::uint8_t* above, std::size_t width,
                       std::uint8_t* out);

// From right to left, every cell of `out` that is empty in `cells` takes the least of itself and
// its right, lower and lower right neighbours in the result. `below` is the result of the row
// below, or `out` where there is none.
void propagate_backward(const std::uint8_t* cells, const std::uint8_t* below, std::size_t width,
                        std::uint8_t* out);

}  // namespace simd
