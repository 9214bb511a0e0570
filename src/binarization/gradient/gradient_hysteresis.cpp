// Edges among the candidates: each candidate strong enough to start one, and what a trace from it
// reaches.
//
// The order decides results, because a trace ends at a depth of 64 and a pixel is traced only by
// the trace that reaches it first. Starts are taken in raster order; each is at depth 0, also one
// that an earlier trace has reached already. From a pixel the trace looks at its neighbours in
// raster order (above left, above, above right, left, right, below left, below, below right). A
// candidate above the follow threshold that was not reached before becomes an edge, and is traced
// at once when its depth is at most 64, before the next neighbour is looked at. Pixels at depth 65
// become edges and end the trace.
//
// A pixel once reached is never open again, so the first open neighbour found anew after each
// return is the next one of the order. All that a trace has to remember are the pixels of its path
// that had a further open neighbour when it left them; to the others it need not return.
#include <array>
#include <bit>
#include <cstring>

#include "binarization/gradient/gradient_edges.h"

namespace binarization {
namespace {

constexpr std::size_t kDeepestTraced = kTraceReach - 1;

// Bits of columns x - 1, x and x + 1, in this order from the least significant one. 1 <= x, and
// column x + 1 exists.
inline unsigned three_bits(const std::uint64_t* row, std::size_t x) {
    const std::size_t word = x / 64;
    const std::size_t bit = x % 64;
    if (bit == 0) return static_cast<unsigned>(row[word] << 1 | row[word - 1] >> 63) & 7U;
    if (bit == 63) return static_cast<unsigned>(row[word] >> 62 | row[word + 1] << 2) & 7U;
    return static_cast<unsigned>(row[word] >> (bit - 1)) & 7U;
}

inline void clear_bit(std::uint64_t* row, std::size_t x) {
    row[x / 64] &= ~(std::uint64_t{1} << (x % 64));
}

struct Position {
    std::uint64_t* row;
    std::size_t x;
    std::size_t depth;
};

// The column of neighbour i, in raster order: 0, 1 or 2. The next step of a trace waits for it, so
// the table is a number and not an array in memory.
inline std::size_t column_of(std::size_t i) {
    constexpr std::uint32_t kColumns = 0b10'01'00'10'01'00'10'01'00;
    return kColumns >> (2 * i) & 3U;
}

}  // namespace

// A start without an open pixel at or around it has nothing to trace, which holds for most starts
// in text: an earlier trace came along there.
void EdgeFinder::trace(std::size_t y) {
    if (y == 0 || y + 1 == height_) return;
    const std::uint64_t* starts = starts_.row(y);
    const std::uint64_t* rows[3] = {open_.row(y - 1), open_.row(y), open_.row(y + 1)};
    const auto open = [&](std::size_t i) { return rows[0][i] | rows[1][i] | rows[2][i]; };
    for (std::size_t i = 0; i < words(); ++i) {
        if (starts[i] == 0) continue;
        std::uint64_t around = open(i);
        around |= around << 1 | around >> 1;
        if (i > 0) around |= open(i - 1) >> 63;
        if (i + 1 < words()) around |= open(i + 1) << 63;
        for (std::uint64_t left = starts[i] & around; left != 0; left &= left - 1) {
            trace_from(y, i * 64 + static_cast<std::size_t>(std::countr_zero(left)));
        }
    }
}

// Candidates are no border pixels, so every neighbour is a pixel of the image.
void EdgeFinder::trace_from(std::size_t y, std::size_t x) {
    std::uint64_t* const first_row = open_.row(0);
    const auto pitch = static_cast<std::ptrdiff_t>(open_.words());
    std::uint64_t* const last_row =
        first_row + static_cast<std::ptrdiff_t>(open_.rows() - 1) * pitch;
    std::array<Position, kDeepestTraced + 1> left;  // by depth, though not at every depth
    std::size_t count = 0;
    Position at{open_.row(y), x, 0};
    clear_bit(at.row, x);
    for (;;) {
        std::uint64_t* const above = at.row == first_row ? last_row : at.row - pitch;
        std::uint64_t* const below = at.row == last_row ? first_row : at.row + pitch;
        const unsigned around =
            three_bits(above, at.x) | three_bits(at.row, at.x) << 3 | three_bits(below, at.x) << 6;
        if (around == 0) {
            if (count == 0) return;
            at = left[--count];
            continue;
        }
        const auto first = static_cast<std::size_t>(std::countr_zero(around));
        std::uint64_t* row = (around & 0b000'111'111U) != 0 ? at.row : below;
        row = (around & 0b000'000'111U) != 0 ? above : row;
        const std::size_t column = at.x + column_of(first) - 1;
        clear_bit(row, column);
        if (at.depth == kDeepestTraced) continue;
        left[count] = at;
        count += (around & (around - 1)) != 0 ? 1 : 0;
        at = {row, column, at.depth + 1};
    }
}

}  // namespace binarization
