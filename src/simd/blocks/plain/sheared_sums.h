// Plain forms of sheared_sums.h.
#pragma once

#include <algorithm>

#include "simd/blocks/sheared_sums.h"

namespace simd::plain {

template <class Cell>
void sum_sheared_lines(const CellLines<Cell>& image, int slope, double* sums) {
    const auto last = static_cast<std::int64_t>(image.lines) - 1;
    const std::int64_t first = std::min<std::int64_t>(line_shift(last, slope), 0);
    std::fill_n(sums, sheared_length(image.lines, image.length, slope), 0.0);
    for (std::int64_t line = 0; line <= last; ++line) {
        const Cell* const cells = image.cells + line * static_cast<std::int64_t>(image.pitch);
        double* const out = sums + (line_shift(line, slope) - first);
        for (std::size_t i = 0; i < image.length; ++i) out[i] += cells[i];
    }
}

inline double sum_of_squares(const double* values, std::size_t count) {
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) sum += values[i] * values[i];
    return sum;
}

template <class Cell>
void add_cells_2x2(const Cell* upper, const Cell* lower, std::size_t out_count, Cell* out) {
    for (std::size_t i = 0; i < out_count; ++i) {
        out[i] =
            static_cast<Cell>(upper[2 * i] + upper[2 * i + 1] + lower[2 * i] + lower[2 * i + 1]);
    }
}

}  // namespace simd::plain
