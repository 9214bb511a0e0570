// Changes of colour between neighbouring pixels of a bitonal page, counted in cells of a byte's
// width and up to eight rows' height.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr int kMaxChangeRows = 8;

// What is counted of the cell under byte b, whose pixels are 8 b .. 8 b + 7: pairs of neighbours
// that differ. A pair belongs to its left or upper pixel; pixels beyond the width make no pair.
struct ChangeCounts {
    std::uint8_t* across;        // [b]: pairs along the rows
    std::uint8_t* across_first;  // [b]: those of the first row alone
    std::uint8_t* down;          // [b]: pairs along the columns
    std::uint8_t* down_left;     // [b]: those of column 8 b alone
};

// Counts `row_count` (1 .. kMaxChangeRows) rows of `width` (at least 1) pixels. With `row_below`
// one more row is read: the lower half of the last row's pairs along the columns; otherwise the
// last row has none. Only the bytes that hold the pixels are read, a count for each of them is
// written.
void count_changes(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count, bool row_below,
                   std::int32_t width, const ChangeCounts& counts);

namespace plain {

// The same a pixel at a time.
void count_changes(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count, bool row_below,
                   std::int32_t width, const ChangeCounts& counts);

}  // namespace plain

}  // namespace simd
