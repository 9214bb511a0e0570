// Plain form of colour_changes.h.
#pragma once

#include <algorithm>

#include "simd/bits/colour_changes.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline void count_changes(const std::uint8_t* rows, std::ptrdiff_t stride, int row_count,
                          bool row_below, std::int32_t width, const ChangeCounts& counts) {
    const auto pixels = static_cast<std::size_t>(width);
    for (std::uint8_t* of : {counts.across, counts.across_first, counts.down, counts.down_left}) {
        std::fill_n(of, (pixels + 7) / 8, std::uint8_t{0});
    }
    for (int y = 0; y < row_count; ++y) {
        const std::uint8_t* const row = rows + y * stride;
        for (std::size_t x = 0; x < pixels; ++x) {
            if (x + 1 < pixels && pixel(row, x) != pixel(row, x + 1)) {
                ++counts.across[x / 8];
                if (y == 0) ++counts.across_first[x / 8];
            }
            if ((y + 1 < row_count || row_below) && pixel(row, x) != pixel(row + stride, x)) {
                ++counts.down[x / 8];
                if (x % 8 == 0) ++counts.down_left[x / 8];
            }
        }
    }
}

}  // namespace simd::plain
