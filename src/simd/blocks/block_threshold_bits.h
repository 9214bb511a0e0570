// Grey rows turned into bits by thresholds of their own for every four pixels, and by the darkness
// of their surroundings; and bits put into a row of a bitonal page.
//
// Keep true: rows are padded as padded_rows.h says; bits are whole words of 64 pixels, pixel 0 in
// the least significant bit of the first. What is set behind the last pixel is undefined.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/pixels/padded_rows.h"

namespace simd {

// Sets the bits of pixels darker than thresholds[x / 4].
void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits);

// Sets the bits of pixels 1 .. width - 2 that are below `level` and whose neighbourhood of 3 x 3,
// themselves included, has a sum below 9 * level.
void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits);

// Sets pixels of a row of a page, whose first pixel is the most significant bit of its first byte,
// where `bits` has them. Bits behind the last pixel do not count, and may be cleared in `bits`.
// Bytes behind the one with the last pixel are left alone.
void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row);

}  // namespace simd
