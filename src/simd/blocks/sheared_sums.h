// Sums over the lines of an image of cells that are shifted against each other by a slope, and what
// goes with them: the kernels of the skew search. plain/sheared_sums.h says what each function
// computes.
//
// Use: lay the cells out in lines along the direction in which the sums are indexed, so that a
// candidate slope moves each line by a number of cells.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// The number of zero cells that must stand before and behind every line, since the kernels work on
// whole blocks of sums. Neighbouring lines share them.
template <class Cell>
constexpr std::size_t kLineMargin = 256 / sizeof(Cell);

// A slope is in 64ths of a cell per line.
constexpr std::int64_t kSlopeScale = 64;

// Cell: std::uint8_t or std::uint16_t.
template <class Cell>
struct CellLines {
    const Cell* cells = nullptr;  // cell 0 of line 0
    std::size_t lines = 0;        // at least 1
    std::size_t length = 0;       // cells of a line, at least 1
    std::size_t pitch = 0;        // cells from line to line, at least length + kLineMargin
    std::uint32_t largest = 0;    // at least 1; no cell is greater
};

// The number of cells by which a line moves, rounded towards zero.
constexpr std::int64_t line_shift(std::int64_t line, int slope) {
    return line * slope / kSlopeScale;
}

// The number of sums of sum_sheared_lines().
constexpr std::size_t sheared_length(std::size_t lines, std::size_t length, int slope) {
    const std::int64_t shift = line_shift(static_cast<std::int64_t>(lines) - 1, slope);
    return length + static_cast<std::size_t>(shift < 0 ? -shift : shift);
}

// sums[j] = sum over the lines of cell j + first - line_shift(line, slope), cells outside a line
// being zero, where first is the lowest of the shifts: that of the last line when the slope is
// negative, otherwise 0. |slope| is below 2^20. `sums` has room for sheared_length() values and
// kLineMargin more, which become zero or are left alone.
void sum_sheared_lines(const CellLines<std::uint8_t>& image, int slope, double* sums);
void sum_sheared_lines(const CellLines<std::uint16_t>& image, int slope, double* sums);

// The sum of the squares, added up in any order: it is exact when the values are integers and it is
// below 2^53.
double sum_of_squares(const double* values, std::size_t count);

// out[i] = the four cells 2i and 2i + 1 of both lines together, which must fit in a cell.
void add_cells_2x2(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t out_count,
                   std::uint8_t* out);
void add_cells_2x2(const std::uint16_t* upper, const std::uint16_t* lower, std::size_t out_count,
                   std::uint16_t* out);

}  // namespace simd
