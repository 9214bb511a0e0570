// Plain forms of turn_pixels.h.
#pragma once

#include <cstring>

#include "simd/pixels/turn_pixels.h"

namespace simd::plain {

inline void transpose_pixels(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                             std::size_t columns, std::size_t pixel_bytes, std::uint8_t* dst,
                             std::ptrdiff_t dst_stride) {
    for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t x = 0; x < columns; ++x) {
            std::memcpy(dst + static_cast<std::ptrdiff_t>(x) * dst_stride + y * pixel_bytes,
                        src + static_cast<std::ptrdiff_t>(y) * src_stride + x * pixel_bytes,
                        pixel_bytes);
        }
    }
}

inline void reverse_pixels(const std::uint8_t* src, std::size_t count, std::size_t pixel_bytes,
                           std::uint8_t* dst) {
    for (std::size_t i = count; i-- > 0; dst += pixel_bytes) {
        std::memcpy(dst, src + i * pixel_bytes, pixel_bytes);
    }
}

}  // namespace simd::plain
