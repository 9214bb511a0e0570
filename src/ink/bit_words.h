// Single 64-bit words of bitonal rows: pixel 0 of a word is its most significant bit.
//
// Use: word_at(row, pixels, bytes, x) reads the 64 pixels from any x on, white beyond both ends of
// the row; store_word() writes a word, or the part of it that the row still has room for.
//
// Keep true: row points at `bytes` readable bytes, enough for `pixels` pixels.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/byte_order.h"

namespace ink {

constexpr std::int64_t kWordPixels = 64;
constexpr std::int64_t kWordBytes = 8;

// Writes the first bytes of the word, all 8 or as many as there is room for.
inline void store_word(std::uint8_t* bytes, std::uint64_t word, std::ptrdiff_t room) {
    const std::uint64_t stored = common::swap_bytes(word);
    if (room >= kWordBytes) {
        std::memcpy(bytes, &stored, sizeof(stored));
    } else {
        std::memcpy(bytes, &stored, static_cast<std::size_t>(room));
    }
}

// Ones at pixels from .. to - 1 of a word; 0 <= from < to <= 64.
inline std::uint64_t span_mask(std::int64_t from, std::int64_t to) {
    return (~std::uint64_t{0} >> from) & (~std::uint64_t{0} << (kWordPixels - to));
}

// word_at() where the word overlaps an end of the row, byte by byte.
inline std::uint64_t word_at_end(const std::uint8_t* row, std::int64_t pixels, std::int64_t x) {
    if (x <= -kWordPixels || x >= pixels) return 0;
    const std::int64_t first = x >> 3;  // rounds down, also left of the row
    const int offset = static_cast<int>(x & 7);
    const std::int64_t end = (pixels + 7) / 8;
    std::uint64_t word = 0;
    for (std::int64_t i = 0; i <= kWordBytes; ++i) {
        const std::int64_t index = first + i;
        const std::uint64_t value = index >= 0 && index < end ? row[index] : 0;
        const std::int64_t left = 56 - 8 * i + offset;  // pixel 0 of the byte, from bit 7 up
        word |= left >= 0 ? value << left : value >> -left;
    }
    return x + kWordPixels <= pixels ? word : word & span_mask(0, pixels - x);
}

inline std::uint64_t word_at(const std::uint8_t* row, std::int64_t pixels, std::ptrdiff_t bytes,
                             std::int64_t x) {
    if (x < 0 || x + kWordPixels > pixels || (x >> 3) + kWordBytes >= bytes) {
        return word_at_end(row, pixels, x);
    }
    const std::uint8_t* from = row + (x >> 3);
    const int offset = static_cast<int>(x & 7);
    return common::load_big_endian(from) << offset |
           static_cast<std::uint64_t>(from[kWordBytes] >> (8 - offset));
}

// aligned_word() where fewer than 64 pixels are left. Out of line, so that the other words of a row
// are read where they are used.
[[gnu::noinline]] inline std::uint64_t aligned_word_at_end(const std::uint8_t* row,
                                                           std::int64_t pixels, std::int64_t x) {
    const std::int64_t left = pixels - x;
    std::uint64_t word = 0;
    std::memcpy(&word, row + (x >> 3), static_cast<std::size_t>((left + 7) / 8));
    return common::swap_bytes(word) & span_mask(0, left);
}

// word_at() for an x of the row that is a multiple of 64. Reads the bytes of these pixels only.
inline std::uint64_t aligned_word(const std::uint8_t* row, std::int64_t pixels, std::int64_t x) {
    if (x + kWordPixels > pixels) return aligned_word_at_end(row, pixels, x);
    return common::load_big_endian(row + (x >> 3));
}

// Clears `erased` of the 64 pixels from x on, a multiple of 64: pixels that the row has.
inline void erase_pixels(std::uint8_t* row, std::int64_t pixels, std::int64_t x,
                         std::uint64_t erased) {
    std::uint8_t* const bytes = row + (x >> 3);
    if (x + kWordPixels <= pixels) {
        return store_word(bytes, common::load_big_endian(bytes) & ~erased, kWordBytes);
    }
    for (std::int64_t i = 0; erased != 0; ++i, erased <<= 8) {
        bytes[i] &= static_cast<std::uint8_t>(~(erased >> 56));
    }
}

}  // namespace ink
