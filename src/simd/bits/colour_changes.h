// Changes of colour between neighbouring pixels of a bitonal page, counted in cells that are a byte
// wide and up to eight rows high. plain/colour_changes.h says what is counted.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr int kMaxChangeRows = 8;

// What is counted in the cell of byte b, whose pixels are 8 b .. 8 b + 7: pairs of neighbouring
// pixels that differ. A pair belongs to its left or upper pixel; pixels beyond the width make no
// pair.
struct ChangeCounts {
    std::uint8_t* across;        // [b]: pairs along the rows
    std::uint8_t* across_first;  // [b]: those of the first row alone
    std::uint8_t* down;          // [b]: pairs along the columns
    std::uint8_t* down_left;     // [b]: those of column 8 b alone
};

// Counts `row_count` (1 .. kMaxChangeRows) rows of `width` (at least 1) pixels. With `row_below`
// the row after them is read, too, and makes pairs along the columns with the last row, which
// otherwise has none. Only the bytes that contain the pixels are read, and one count is written for
// each of them.
void count_changes(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count, bool row_below,
                   std::int32_t width, const ChangeCounts& counts);

}  // namespace simd
