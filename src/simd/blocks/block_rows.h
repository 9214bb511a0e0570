// Rows of maps that have one cell, a byte, for every 4 x 4 block of a page. Where a cell is a
// threshold, 0 stands for a block without one: an empty cell. plain/block_rows.h says what each
// function computes.
//
// Keep true: rows are padded as padded_rows.h says. A word is 64 pixels of a row, or 16 cells.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/pixels/padded_rows.h"

namespace simd {

// The means, rounded down, of the midpoints and of the contrasts of those pixels of each block
// whose contrast is not 0; 0 and 0 for blocks without such pixels. edges[i] is 0 where no pixel of
// word i has a contrast in any of the four rows.
void edge_means(const FourRows& midpoints, const FourRows& contrasts, const std::uint64_t* edges,
                std::size_t words, std::uint8_t* midpoint_means, std::uint8_t* contrast_means);

// The mean, rounded down, of the 16 pixels of each block.
void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means);

// Each empty cell among 1 .. width - 2 becomes the mean, rounded down, of those of its 8 neighbours
// that are not empty; all other cells are copied.
void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// Each filled cell among 1 .. width - 2 becomes the mean, rounded down, of the filled cells among
// the nine around and at it, where these are at least three; all other cells become empty.
void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// The mean, rounded down, of the least and the greatest of the nine cells around and at each cell,
// where the two differ by more than `limit`, and 0 elsewhere. The cells before the first and behind
// the last one count, too.
void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit, std::uint8_t* out);

}  // namespace simd
