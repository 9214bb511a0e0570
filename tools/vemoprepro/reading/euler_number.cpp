// Counted by the 2 x 2 squares of the page (S. B. Gray, Local properties of binary images in two
// dimensions, 1971): squares with one black pixel, less those with three, less twice those with two
// at opposite corners, make four times the number.
#include "reading/euler_number.h"

#include <bit>
#include <cstddef>
#include <vector>

namespace tool::reading {
namespace {

// 32 pixels, the leftmost in the highest bit.
std::uint32_t word_at(const unsigned char* row, std::size_t i) {
    const unsigned char* bytes = row + 4 * i;
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// Of 32 squares at a time: a and b are their upper pixels, c and d the lower ones.
int corners(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    const std::uint32_t odd = a ^ b ^ c ^ d;
    const std::uint32_t several = (a & b) | (c & d) | ((a | b) & (c | d));
    const std::uint32_t opposite = (a & d & ~b & ~c) | (b & c & ~a & ~d);
    return std::popcount(odd & ~several) - std::popcount(odd & several) -
           2 * std::popcount(opposite);
}

// Over the squares between two rows, those beyond their ends included.
std::int64_t corners_between(const unsigned char* above, const unsigned char* below,
                             std::size_t words) {
    std::int64_t sum = 0;
    std::uint32_t left_above = 0, left_below = 0;
    for (std::size_t i = 0; i < words; ++i) {
        const std::uint32_t b = word_at(above, i), d = word_at(below, i);
        sum += corners(b >> 1 | left_above << 31, b, d >> 1 | left_below << 31, d);
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
                               y == bits.height ? blank.data() : bits.row(y), bits.stride() / 4);
    }
    return sum / 4;
}

}  // namespace tool::reading
