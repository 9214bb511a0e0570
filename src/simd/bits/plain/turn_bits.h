// Plain forms of turn_bits.h.
#pragma once

#include <algorithm>

#include "simd/bits/turn_bits.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline void transpose_bits(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                           std::size_t columns, std::uint8_t* dst, std::ptrdiff_t dst_stride) {
    for (std::size_t x = 0; x < columns; ++x, dst += dst_stride) {
        std::fill_n(dst, (rows + 31) / 32 * 4, std::uint8_t{0});
        for (std::size_t y = 0; y < rows; ++y) {
            set_pixel(dst, y, pixel(src + static_cast<std::ptrdiff_t>(y) * src_stride, x));
        }
    }
}

inline void half_turn_bits(const std::uint8_t* src, std::size_t rows, std::size_t columns,
                           std::size_t stride, std::uint8_t* dst) {
    std::fill_n(dst, rows * stride, std::uint8_t{0});
    for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t x = 0; x < columns; ++x) {
            set_pixel(dst + (rows - 1 - y) * stride, columns - 1 - x, pixel(src + y * stride, x));
        }
    }
}

}  // namespace simd::plain
