// Plain form of shift_bits.h.
#pragma once

#include "simd/bits/shift_bits.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline void shift_right(const std::uint8_t* src, std::size_t src_bytes, unsigned pixels,
                        std::uint8_t* dst, std::size_t dst_bytes) {
    for (std::size_t x = 0; x < 8 * dst_bytes; ++x) {
        set_pixel(dst, x, x >= pixels && x - pixels < 8 * src_bytes && pixel(src, x - pixels));
    }
}

}  // namespace simd::plain
