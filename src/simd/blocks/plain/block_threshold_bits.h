// Plain forms of block_threshold_bits.h.
#pragma once

#include <initializer_list>

#include "simd/blocks/block_threshold_bits.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds,
                             std::size_t words, std::uint64_t* bits) {
    for (std::size_t x = 0; x < 64 * words; ++x) {
        if (grey[x] < thresholds[x / 4]) mark(bits, x);
    }
}

inline void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                           std::uint64_t* bits) {
    for (std::size_t x = 1; x + 1 < width; ++x) {
        int sum = 0;
        for (const std::uint8_t* row : {grey.above, grey.row, grey.below}) {
            sum += row[x - 1] + row[x] + row[x + 1];
        }
        if (grey.row[x] < level && sum < 9 * level) mark(bits, x);
    }
}

inline void set_pixels(const std::uint64_t* bits, std::size_t width, std::uint8_t* row) {
    for (std::size_t x = 0; x < width; ++x) {
        if (marked(bits, x)) set_pixel(row, x, true);
    }
}

}  // namespace simd::plain
