// Plain forms of blend_line.h.
#pragma once

#include "simd/pixels/blend_line.h"

namespace simd::plain {

// The sum of the four bytes around a place, weighted by how near it is to each in sixteenths of a
// pixel: 256 times their mean.
inline unsigned blended(const std::uint8_t* upper, std::ptrdiff_t stride, int pixel_bytes,
                        std::int64_t x, std::int64_t y) {
    const auto right = static_cast<unsigned>(x >> (kPlaceBits - 4) & 15);
    const auto lower = static_cast<unsigned>(y >> (kPlaceBits - 4) & 15);
    const std::uint8_t* const below = upper + stride;
    return (16 - right) * (16 - lower) * upper[0] + right * (16 - lower) * upper[pixel_bytes] +
           (16 - right) * lower * below[0] + right * lower * below[pixel_bytes];
}

template <int kPixelBytes>
void blend_pixels(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    std::int64_t x = line.x;
    std::int64_t y = line.y;
    for (std::size_t i = 0; i < count; ++i, x += line.x_step, y += line.y_step) {
        const std::uint8_t* const pixel =
            line.src + (y >> kPlaceBits) * line.stride + (x >> kPlaceBits) * kPixelBytes;
        for (int c = 0; c < kPixelBytes; ++c) {
            const unsigned sum = blended(pixel + c, line.stride, kPixelBytes, x, y);
            *out++ = static_cast<std::uint8_t>((sum + 128) >> 8);
        }
    }
}

inline void blend_line(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    blend_pixels<1>(line, count, out);
}
inline void blend_line_of_3(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    blend_pixels<3>(line, count, out);
}
inline void blend_line_of_4(const SlantedLine& line, std::size_t count, std::uint8_t* out) {
    blend_pixels<4>(line, count, out);
}

inline std::uint64_t marks_of(const SlantedLine& line, const MarkedPart& part) {
    std::int64_t x = part.x;
    std::int64_t y = part.y;
    std::uint64_t marks = 0;
    for (std::size_t i = 0; i < part.count; ++i, x += line.x_step, y += line.y_step) {
        const std::uint8_t* const pixel =
            line.src + (y >> kPlaceBits) * line.stride + (x >> kPlaceBits);
        if (blended(pixel, line.stride, 1, x, y) > 128) marks |= std::uint64_t{1} << (63 - i);
    }
    return marks;
}

inline void blend_marks(const SlantedLine& line, MarkedPart* parts, std::size_t part_count) {
    for (std::size_t i = 0; i < part_count; ++i) parts[i].marks = marks_of(line, parts[i]);
}

}  // namespace simd::plain
