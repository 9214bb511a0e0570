// Grey rows turned into bits by thresholds of their own for every four pixels, and by the darkness
// of their surroundings; and bits put into a row of a bitonal page.
//
// Keep true: rows are padded as padded_rows.h says; bits are whole words of 64 pixels, pixel 0 in
// the least significant bit of the first. What is set behind the last pixel is undefined.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/pixels/midpoint_rows.h"

namespace simd {

// Sets the bits of pixels darker than thresholds[x / 4].
void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds, std::size_t words,
                      std::uint64_t* bits);

// Sets the bits of pixels 1 .. width - 2 that are below `level` and whose neighbourhood of 3 x 3,
// themselves included, has a sum below 9 * level.
void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                    std::uint64_t* bits);

// Sets pixels of a row of a page, whose first pixel is the most significant bit of its first byte,
// where `bits` has them. Of the bits behind the last pixel those in its word are cleared in `bits`.
// Bytes behind the one with the last pixel are left alone.
void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row);

namespace plain {

// Bytes begin .. end - 1 of a row.
inline void set_bytes(const std::uint64_t* bits, std::size_t begin, std::size_t end,
                      std::uint8_t* row) {
    for (std::size_t i = begin; i < end; ++i) {
        for (std::size_t k = 0; k < 8; ++k) {
            const std::uint64_t bit = bits[i / 8] >> (i % 8 * 8 + k) & 1;
            row[i] = static_cast<std::uint8_t>(row[i] | bit << (7 - k));
        }
    }
}

inline void clear_behind(std::uint64_t* bits, std::size_t width) {
    if (width % 64 != 0) bits[width / 64] &= (std::uint64_t{1} << (width % 64)) - 1;
}

inline void set_pixels(std::uint64_t* bits, std::size_t width, std::uint8_t* row) {
    clear_behind(bits, width);
    set_bytes(bits, 0, (width + 7) / 8, row);
}

inline void set_below_blocks(const std::uint8_t* grey, const std::uint8_t* thresholds,
                             std::size_t words, std::uint64_t* bits) {
    for (std::size_t x = 0; x < 64 * words; ++x) {
        if (grey[x] < thresholds[x / 4]) bits[x / 64] |= std::uint64_t{1} << (x % 64);
    }
}

inline void set_dark_areas(const ThreeRows& grey, std::size_t width, std::uint8_t level,
                           std::uint64_t* bits) {
    for (std::size_t x = 1; x + 1 < width; ++x) {
        int sum = 0;
        for (const std::uint8_t* row : {grey.above, grey.row, grey.below}) {
            sum += row[x - 1] + row[x] + row[x + 1];
        }
        if (grey.row[x] < level && sum < 9 * level) bits[x / 64] |= std::uint64_t{1} << (x % 64);
    }
}

}  // namespace plain
}  // namespace simd
