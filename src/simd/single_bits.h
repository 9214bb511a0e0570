// Single pixels of the two kinds of bit rows, for plain forms.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd::plain {

// A bitonal row: pixel 0 is the most significant bit of the first byte.
inline bool pixel(const std::uint8_t* row, std::size_t x) {
    return (row[x / 8] >> (7 - x % 8) & 1) != 0;
}

inline void set_pixel(std::uint8_t* row, std::size_t x, bool value) {
    const unsigned bit = 0x80U >> (x % 8);
    row[x / 8] = static_cast<std::uint8_t>(value ? row[x / 8] | bit : row[x / 8] & ~bit);
}

// A mask row: pixel 0 is the least significant bit of the first word of 64.
inline bool marked(const std::uint64_t* marks, std::size_t x) {
    return (marks[x / 64] >> (x % 64) & 1) != 0;
}

inline void mark(std::uint64_t* marks, std::size_t x) {
    marks[x / 64] |= std::uint64_t{1} << (x % 64);
}

}  // namespace simd::plain
