// A grey row turned into bits by one threshold, or by one for every four pixels.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Bit x of `bits`, most significant first, is grey[x] < threshold, for x < width. Writes
// ceil(width / 8) bytes; the bits behind the last pixel become 0.
void pack_below(const std::uint8_t* grey, std::size_t width, std::uint8_t threshold,
                std::uint8_t* bits);

// The same with a threshold for every four pixels: thresholds[x / 4] for pixel x, ceil(width / 4)
// of them.
void pack_below_blocks(const std::uint8_t* grey, std::size_t width, const std::uint8_t* thresholds,
                       std::uint8_t* bits);

}  // namespace simd
