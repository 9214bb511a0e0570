// Plain forms of threshold_bits.h.
#pragma once

#include <algorithm>

#include "simd/pixels/threshold_bits.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline void pack_below(const std::uint8_t* grey, std::size_t width, std::uint8_t threshold,
                       std::uint8_t* bits) {
    std::fill_n(bits, (width + 7) / 8, std::uint8_t{0});
    for (std::size_t x = 0; x < width; ++x) {
        if (grey[x] < threshold) set_pixel(bits, x, true);
    }
}

inline void pack_below_blocks(const std::uint8_t* grey, std::size_t width,
                              const std::uint8_t* thresholds, std::uint8_t* bits) {
    std::fill_n(bits, (width + 7) / 8, std::uint8_t{0});
    for (std::size_t x = 0; x < width; ++x) {
        if (grey[x] < thresholds[x / 4]) set_pixel(bits, x, true);
    }
}

}  // namespace simd::plain
