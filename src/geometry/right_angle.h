// Turns of whole images by multiples of a quarter turn.
//
// Use: the destination of a bitonal turn has the stride of turned_stride(); that of a turn of whole
// bytes per pixel has a stride of its own.
//
// Keep true: sizes are positive, source and destination do not overlap, and the destination has
// room for the whole result.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"

namespace geometry {

// The values are the rotation codes of the exported functions.
enum class Turn { kCounterClockwise = 1, kHalf = 2, kClockwise = 3 };

// A quarter turn packs its rows anew to whole 32-bit words, a half turn keeps the stride.
std::int64_t turned_stride(Turn turn, common::BitonalView src);

// Writes every byte of the result's rows and nothing else; padding bits become 0.
void turn_bitonal(Turn turn, common::BitonalView src, std::uint8_t* dst);

// Rows of pixels of `pixel_bytes` bytes (>= 1), which stay together.
struct PixelImage {
    const std::uint8_t* data = nullptr;
    std::size_t height = 0;     // rows
    std::size_t width = 0;      // pixels
    std::ptrdiff_t stride = 0;  // bytes from row to row
    std::size_t pixel_bytes = 1;

    std::size_t row_bytes() const { return width * pixel_bytes; }
};

// Writes the pixels of the result, in rows `dst_stride` bytes apart, and nothing between them.
void turn_pixels(Turn turn, const PixelImage& src, std::uint8_t* dst, std::ptrdiff_t dst_stride);

}  // namespace geometry
