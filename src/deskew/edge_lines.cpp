// Storage of the edge cells.
//
// Lines start an odd number of cache lines apart, so that walking across them, as filling and
// searching do, spreads over all sets of the cache.
#include "deskew/edge_lines.h"

#include <algorithm>
#include <limits>
#include <new>

namespace deskew {

namespace {

constexpr std::size_t kCacheLineCells = 64 / sizeof(std::uint16_t);

constexpr std::size_t line_pitch(std::size_t length) {
    return ((length + simd::kLineMargin + kCacheLineCells - 1) / kCacheLineCells | 1) *
           kCacheLineCells;
}

std::size_t block_size(std::size_t lines, std::size_t pitch) {
    if (lines > (std::numeric_limits<std::size_t>::max() - simd::kLineMargin) / pitch)
        throw std::bad_alloc();
    return simd::kLineMargin + lines * pitch;
}

}  // namespace

EdgeLines::EdgeLines(LineShape whole, LineShape stored, std::uint32_t largest)
    : whole_(whole),
      lines_(static_cast<std::size_t>(stored.lines)),
      length_(static_cast<std::size_t>(stored.length)),
      pitch_(line_pitch(length_)),
      largest_(largest),
      cells_(block_size(lines_, pitch_)) {}

void EdgeLines::close_margins() {
    std::fill_n(cells_.data(), simd::kLineMargin, std::uint16_t{0});
    for (std::size_t i = 0; i < lines_; ++i)
        std::fill_n(line(i) + length_, pitch_ - length_, std::uint16_t{0});
}

EdgeLines halved(const EdgeLines& edges) {
    const LineShape whole = {edges.whole().lines / 2, edges.whole().length / 2};
    const auto lines = static_cast<std::int64_t>(edges.lines() / 2);
    const auto length = static_cast<std::int64_t>(edges.length() / 2);
    EdgeLines half(whole, {lines, length}, 4 * edges.largest());
    for (std::size_t i = 0; i < half.lines(); ++i)
        simd::add_cells_2x2(edges.line(2 * i), edges.line(2 * i + 1), half.length(), half.line(i));
    half.close_margins();
    return half;
}

}  // namespace deskew
