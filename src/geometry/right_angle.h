// Turns of whole images by multiples of a quarter turn.
//
// Use: the destination of a bitonal turn has the size and stride of turned_stride() and the turned
// height; that of a packed turn has the source's size in bytes.
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

// Rows without padding, `pixel_bytes` bytes per pixel (>= 1), which stay together.
struct PackedImage {
    const std::uint8_t* data = nullptr;
    std::size_t height = 0;  // rows
    std::size_t width = 0;   // pixels
    std::size_t pixel_bytes = 1;
};

void turn_packed(Turn turn, const PackedImage& src, std::uint8_t* dst);

}  // namespace geometry
