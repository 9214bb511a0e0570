// A grey row turned into pixels of a bitonal row, by one threshold or by one for every four pixels.
// plain/threshold_bits.h says what each function computes.
//
// Pixel 0 is the most significant bit of the first byte. ceil(width / 8) bytes are written, and the
// bits behind the last pixel become 0. Nothing is read beyond the pixels and their thresholds.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Pixel x becomes grey[x] < threshold.
void pack_below(const std::uint8_t* grey, std::size_t width, std::uint8_t threshold,
                std::uint8_t* bits);

// Pixel x becomes grey[x] < thresholds[x / 4].
void pack_below_blocks(const std::uint8_t* grey, std::size_t width, const std::uint8_t* thresholds,
                       std::uint8_t* bits);

}  // namespace simd
