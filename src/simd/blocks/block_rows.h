// Rows of maps that hold one byte for every 4 x 4 block of a page; where that is a threshold, 0
// stands for a block without one.
//
// Keep true: rows are padded as padded_rows.h says. What stands before the first and behind the
// last cell is looked at only where it says so; kernels write there.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/pixels/padded_rows.h"

namespace simd {

// Means, rounded down, of midpoints and contrasts over the pixels of each block whose contrast is
// not 0; 0 for blocks without such pixels. edges[i] is not 0 where word i of 64
// pixels has a contrast in any of the four rows.
void edge_means(const FourRows& midpoints, const FourRows& contrasts, const std::uint64_t* edges,
                std::size_t words, std::uint8_t* midpoint_means, std::uint8_t* contrast_means);

// Means, rounded down, of all 16 pixels of each block.
void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means);

// Cells 1 .. width - 2 that are 0 become the mean, rounded down, of those of their 8 neighbours
// that are not 0; all others are copied.
void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// Cells 1 .. width - 2 that are not 0 become the mean, rounded down, of the cells around and at
// them that are not 0 where these are at least 3; all others become 0.
void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// Midway, rounded down, between the least and the greatest of the nine cells around and at each,
// where they differ by more than `limit`, else 0. The cells before the first and behind the last
// one are read.
void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit, std::uint8_t* out);

}  // namespace simd
