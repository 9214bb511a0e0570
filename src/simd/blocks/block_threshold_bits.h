// Grey rows turned into bits by thresholds of their own for every four pixels, and by the darkness
// of their surroundings; and bits put into a row of a bitonal page. plain/block_threshold_bits.h
// says what each function computes.
//
// Keep true: rows are padded as padded_rows.h says. Rows of bits are full words of 64 pixels, pixel
// 0 in the least significant bit of the first one; bits behind the last pixel may be set to
// anything.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/pixels/padded_rows.h"

namespace simd {

// Sets bit x where grey[x] is below thresholds[x / 4], for all pixels of the `words` words.
void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits);

// Sets the bits of those pixels among 1 .. width - 2 that are below `level` and whose 3 x 3 pixels,
// themselves included, have a mean below it.
void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits);

// Sets pixels of a row of a page, whose first pixel is the most significant bit of its first byte,
// where `bits` has them. Bits behind the last pixel do not count, and may be cleared in `bits`.
// Bytes behind the one with the last pixel are left alone.
void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row);

}  // namespace simd
