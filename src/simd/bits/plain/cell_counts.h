// Plain forms of cell_counts.h.
#pragma once

#include <cstdlib>

#include "simd/bits/cell_counts.h"
#include "simd/single_bits.h"

namespace simd::plain {

// Ink in `height` rows x `width` pixels from (x, y) of the band on.
inline int ink_of_cell(const CountBand& band, std::size_t x, std::size_t y, std::size_t width,
                       std::size_t height) {
    int ink = 0;
    for (std::size_t row = y; row < y + height; ++row) {
        for (std::size_t column = x; column < x + width && column < 8 * band.bytes; ++column) {
            ink += pixel(band.rows[row], column) ? 1 : 0;
        }
    }
    return ink;
}

inline void count_band(const CountBand& band) {
    for (std::size_t column = 0; column < band.columns; ++column) {
        int above = band.first ? ink_of_cell(band, 16 * column, 0, 16, 2) : band.above[column];
        for (std::size_t pair = 0; pair < kBandPairs; ++pair) {
            const int ink = ink_of_cell(band, 16 * column, 2 * pair, 16, 2);
            band.row_edges[column * band.pitch + pair] =
                static_cast<std::uint8_t>(std::abs(ink - above));
            above = ink;
        }
        band.above[column] = static_cast<std::uint16_t>(above);
    }
    for (std::size_t i = 0; i < 4 * band.bytes; ++i) {
        band.tall_cells[i] = static_cast<std::uint8_t>(ink_of_cell(band, 2 * i, 0, 2, kBandRows));
    }
}

inline void adjacent_differences(const std::uint8_t* values, std::size_t count, std::uint8_t* out) {
    for (const std::uint8_t* end = values + count; values != end; ++values) {
        *out++ = static_cast<std::uint8_t>(std::abs(values[0] - values[-1]));
    }
}

}  // namespace simd::plain
