// Single pixels of a bitonal page.
//
// Keep true: 0 <= x < width, 0 <= y < height.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "page/page.h"

namespace tool {

// How many bits of a word are set. Without an instruction for it, which not every machine has, a
// compiler calls a function for each word.
constexpr int count_bits(std::uint32_t word) {
    word -= word >> 1 & 0x55555555;
    word = (word & 0x33333333) + (word >> 2 & 0x33333333);
    return static_cast<int>(((word + (word >> 4)) & 0x0F0F0F0F) * 0x01010101 >> 24);
}

// The bit of column x in its byte of a row.
constexpr int ink_bit(int x) {
    return 0x80 >> x % 8;
}

inline bool is_ink(const unsigned char* row, int x) {
    return (row[x / 8] & ink_bit(x)) != 0;
}
inline bool is_ink(const Page& page, int x, int y) {
    return is_ink(page.row(y), x);
}

inline void set_ink(unsigned char* row, int x) {
    row[x / 8] = static_cast<unsigned char>(row[x / 8] | ink_bit(x));
}

inline void erase_ink(Page& page, int x, int y) {
    page.row(y)[x / 8] &= static_cast<unsigned char>(~ink_bit(x));
}

// Eight pixels, of which 1 stands for ink and 0 for paper, as the byte of a row.
inline unsigned char ink_byte(const unsigned char* pixels) {
    std::uint64_t bytes;
    std::memcpy(&bytes, pixels, sizeof bytes);
    if (std::endian::native == std::endian::big) bytes = __builtin_bswap64(bytes);
    return static_cast<unsigned char>(bytes * 0x8040201008040201 >> 56);
}

// 32 pixels, from column 32 x index on, the leftmost in the highest bit.
inline std::uint32_t pixels_at(const unsigned char* row, std::size_t index) {
    const unsigned char* bytes = row + 4 * index;
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// The first pixel from x on that is (or is not) ink, of those before `end`; `end` when there is
// none.
inline int next_pixel(const unsigned char* row, int x, int end, bool ink) {
    const std::uint32_t other = ink ? 0 : 0xFFFFFFFF;
    while (x < end) {
        const int word_begin = x / 32 * 32;
        const std::uint32_t pixels =
            (pixels_at(row, static_cast<std::size_t>(x) / 32) ^ other) & (0xFFFFFFFF >> x % 32);
        if (pixels != 0) return std::min(end, word_begin + std::countl_zero(pixels));
        x = word_begin + 32;
    }
    return end;
}
inline int next_pixel(const Page& page, int x, int y, bool ink) {
    return next_pixel(page.row(y), x, page.width, ink);
}

// The last pixel before x that is (or is not) ink; -1 when there is none.
inline int last_pixel(const unsigned char* row, int x, bool ink) {
    const std::uint32_t other = ink ? 0 : 0xFFFFFFFF;
    while (x > 0) {
        const int word_begin = (x - 1) / 32 * 32;
        const std::uint32_t pixels =
            (pixels_at(row, static_cast<std::size_t>(x - 1) / 32) ^ other) &
            (0xFFFFFFFF << (31 - (x - 1) % 32));
        if (pixels != 0) return word_begin + 31 - std::countr_zero(pixels);
        x = word_begin;
    }
    return -1;
}

// The columns begin .. end - 1, of which there is at least one, as bits of the bytes from `first`
// to `last`.
struct ByteSpan {
    ByteSpan(int begin, int end)
        : first(begin / 8),
          last((end - 1) / 8),
          of_first(static_cast<unsigned char>(0xFF >> begin % 8)),
          of_last(static_cast<unsigned char>(0xFF00 >> ((end - 1) % 8 + 1))) {}

    int first, last;
    unsigned char of_first, of_last;
};

inline void set_inks(unsigned char* row, int begin, int end) {
    const ByteSpan span(begin, end);
    if (span.first == span.last) {
        row[span.first] |= span.of_first & span.of_last;
        return;
    }
    row[span.first] |= span.of_first;
    std::fill(row + span.first + 1, row + span.last, static_cast<unsigned char>(0xFF));
    row[span.last] |= span.of_last;
}

inline void erase_inks(unsigned char* row, int begin, int end) {
    const ByteSpan span(begin, end);
    if (span.first == span.last) {
        row[span.first] &= static_cast<unsigned char>(~(span.of_first & span.of_last));
        return;
    }
    row[span.first] &= static_cast<unsigned char>(~span.of_first);
    std::fill(row + span.first + 1, row + span.last, static_cast<unsigned char>(0));
    row[span.last] &= static_cast<unsigned char>(~span.of_last);
}

}  // namespace tool
