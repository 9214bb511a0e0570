// Plain forms of cell_sums.h.
#pragma once

#include <cstdlib>
#include <numeric>

#include "simd/pixels/cell_sums.h"

namespace simd::plain {

inline void add_sixteens(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums) {
    for (std::size_t i = 0; i < cells; ++i)
        sums[i] = static_cast<std::uint16_t>(
            std::accumulate(row + 16 * i, row + 16 * i + 16, int{sums[i]}));
}

inline void add_pairs(const std::uint8_t* row, std::size_t cells, std::uint16_t* sums) {
    for (std::size_t i = 0; i < cells; ++i)
        sums[i] = static_cast<std::uint16_t>(sums[i] + row[2 * i] + row[2 * i + 1]);
}

inline void absolute_differences(const std::uint16_t* a, const std::uint16_t* b, std::size_t count,
                                 std::uint16_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<std::uint16_t>(std::abs(a[i] - b[i]));
}

}  // namespace simd::plain
