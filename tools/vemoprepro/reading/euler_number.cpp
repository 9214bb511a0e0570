// Counted by the 2 x 2 squares of the page (S. B. Gray, Local properties of binary images in two
// dimensions, 1971): squares with one black pixel, less those with three, less twice those with two
// at opposite corners, make four times the number.
#include "reading/euler_number.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace tool::reading {
namespace {

// 64 pixels, the leftmost in the highest bit; beyond the row's end they are blank.
std::uint64_t word_at(const unsigned char* row, std::size_t bytes, std::size_t i) {
    std::uint64_t word = 0;
    std::memcpy(&word, row + i, std::min(bytes - i, sizeof word));
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

// How many bits of every byte are set.
std::uint64_t bits_by_byte(std::uint64_t word) {
    word -= word >> 1 & 0x5555555555555555;
    word = (word & 0x3333333333333333) + (word >> 2 & 0x3333333333333333);
    return (word + (word >> 4)) & 0x0F0F0F0F0F0F0F0F;
}

// Of 64 squares at a time: a and b are their upper pixels, c and d the lower ones.
int corners(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d) {
    constexpr std::uint64_t kEveryByte = 0x0101010101010101;
    constexpr int kMost = 16;  // that a byte can be less than 0
    const std::uint64_t odd = a ^ b ^ c ^ d;
    const std::uint64_t several = (a & b) | (c & d) | ((a | b) & (c | d));
    const std::uint64_t opposite = (a & d & ~b & ~c) | (b & c & ~a & ~d);
    const std::uint64_t by_byte = bits_by_byte(odd & ~several) + kMost * kEveryByte -
                                  bits_by_byte(odd & several) - 2 * bits_by_byte(opposite);
    return static_cast<int>(by_byte * kEveryByte >> 56) - 8 * kMost;
}

// Over the squares between two rows, those beyond their ends included.
std::int64_t corners_between(const unsigned char* above, const unsigned char* below,
                             std::size_t bytes) {
    std::int64_t sum = 0;
    std::uint64_t left_above = 0, left_below = 0;
    for (std::size_t i = 0; i < bytes; i += 8) {
        const std::uint64_t b = word_at(above, bytes, i), d = word_at(below, bytes, i);
        if ((b | d | left_above | left_below) == 0) continue;
        sum += corners(b >> 1 | left_above << 63, b, d >> 1 | left_below << 63, d);
        left_above = b & 1, left_below = d & 1;
    }
    return sum + corners(left_above, 0, left_below, 0);
}

}  // namespace

std::int64_t euler_number(const Page& bits) {
    const std::vector<unsigned char> blank(bits.stride());
    std::int64_t sum = 0;
    for (int y = 0; y <= bits.height; ++y) {
        sum += corners_between(y == 0 ? blank.data() : bits.row(y - 1),
                               y == bits.height ? blank.data() : bits.row(y), bits.stride());
    }
    return sum / 4;
}

}  // namespace tool::reading
