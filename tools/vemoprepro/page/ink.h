// Single pixels of a bitonal page.
//
// Keep true: 0 <= x < width, 0 <= y < height.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

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

// The first pixel from x on that is (or is not) ink; the width when there is none. x may be the
// width.
inline int next_pixel(const Page& page, int x, int y, bool ink) {
    const unsigned char* row = page.row(y);
    while (x < page.width) {
        const unsigned byte = (ink ? row[x / 8] : ~row[x / 8]) & (0xFFU >> x % 8);
        if (byte != 0) return std::min(page.width, x / 8 * 8 + std::countl_zero(byte) - 24);
        x = x / 8 * 8 + 8;
    }
    return page.width;
}

}  // namespace tool
