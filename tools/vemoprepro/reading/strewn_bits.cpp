#include "reading/strewn_bits.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "page/ink.h"
#include "reading/impulses.h"

namespace tool::reading {
namespace {

constexpr int kTile = 32;  // pixels a side
// A tile is strewn with one single pixel in so many, a page with so many tiles in ten.
constexpr int kSparsest = 150;
constexpr int kStrewnTiles = 7;

std::uint32_t word_at(const unsigned char* row, int i) {
    const unsigned char* bytes = row + 4 * i;
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// The pixels of a word of row y that are black among white ones. Those at the ends of the word are
// left out, as their neighbours are in other words. y is not the first or the last row.
std::uint32_t single_pixels(const Page& bits, int y, int i) {
    const std::uint32_t above = word_at(bits.row(y - 1), i), own = word_at(bits.row(y), i),
                        below = word_at(bits.row(y + 1), i);
    const std::uint32_t beside = above | below | own;
    return own & ~(beside << 1 | beside >> 1 | above | below) & 0x7FFFFFFE;
}

int singles_of_tile(const Page& bits, int i, int j) {
    int singles = 0;
    const int bottom = std::min(bits.height - 1, (j + 1) * kTile);
    for (int y = std::max(1, j * kTile); y < bottom; ++y) {
        singles += std::popcount(single_pixels(bits, y, i));
    }
    return singles;
}

Page in_greys(const Page& bits) {
    Page grey = make_page_like(bits, PageKind::kGrey);
    for (int y = 0; y < bits.height; ++y) {
        for (int x = 0; x < bits.width; ++x) grey.row(y)[x] = is_ink(bits, x, y) ? 0 : 255;
    }
    return grey;
}

}  // namespace

bool is_strewn(const Page& bits) {
    const int across = bits.width / kTile, down = bits.height / kTile;
    int strewn = 0;
    for (int j = 0; j < down; ++j) {
        for (int i = 0; i < across; ++i) {
            strewn += singles_of_tile(bits, i, j) * kSparsest >= kTile * kTile ? 1 : 0;
        }
    }
    return strewn > 0 && strewn * 10 >= across * down * kStrewnTiles;
}

void remove_strewn_pixels(Page& bits) {
    Page grey = in_greys(bits);
    remove_impulses(grey);
    remove_impulses(grey);
    for (int y = 0; y < bits.height; ++y) {
        unsigned char* row = bits.row(y);
        std::fill_n(row, bits.stride(), static_cast<unsigned char>(0));
        for (int x = 0; x < bits.width; ++x) {
            if (grey.row(y)[x] == 0) set_ink(row, x);
        }
    }
}

}  // namespace tool::reading
