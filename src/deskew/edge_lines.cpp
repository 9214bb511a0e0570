// Layout of the edge cells.
//
// Lines start an odd number of cache lines apart: filling and searching go across them, from line
// to line, and use all sets of the cache that way.
#include "deskew/edge_lines.h"

#include <algorithm>
#include <limits>
#include <new>

namespace deskew {

namespace {

template <class Cell>
constexpr std::size_t line_pitch(std::size_t length) {
    constexpr std::size_t kUnit = 64 / sizeof(Cell);
    return ((length + simd::kLineMargin<Cell> + kUnit - 1) / kUnit | 1) * kUnit;
}

}  // namespace

template <class Cell>
EdgeLines<Cell>::EdgeLines(LineShape whole, LineShape stored, std::uint32_t largest)
    : whole_(whole),
      lines_(static_cast<std::size_t>(stored.lines)),
      length_(static_cast<std::size_t>(stored.length)),
      pitch_(line_pitch<Cell>(length_)),
      largest_(largest) {}

template <class Cell>
std::size_t EdgeLines<Cell>::storage() const {
    // Small enough that a few images together can be counted in bytes.
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max() / 8;
    if (lines_ > kMost / pitch_) throw std::bad_alloc();
    return simd::kLineMargin<Cell> + lines_ * pitch_;
}

template <class Cell>
void EdgeLines<Cell>::close_margins() {
    std::fill_n(first_ - simd::kLineMargin<Cell>, simd::kLineMargin<Cell>, Cell{0});
    for (std::size_t i = 0; i < lines_; ++i)
        std::fill_n(line(i) + length_, pitch_ - length_, Cell{0});
}

template <class Cell>
EdgeLines<Cell> EdgeLines<Cell>::half_shape() const {
    return EdgeLines(
        {whole_.lines / 2, whole_.length / 2},
        {static_cast<std::int64_t>(lines_ / 2), static_cast<std::int64_t>(length_ / 2)},
        4 * largest_);
}

template <class Cell>
void EdgeLines<Cell>::halve(EdgeLines& half) const {
    for (std::size_t i = 0; i < half.lines(); ++i)
        simd::add_cells_2x2(line(2 * i), line(2 * i + 1), half.length(), half.line(i));
    half.close_margins();
    // Sums of four rarely come near four times the largest cell, and smaller cells add faster.
    Cell largest = 1;
    for (std::size_t i = 0; i < half.lines(); ++i)
        for (std::size_t j = 0; j < half.length(); ++j)
            largest = std::max(largest, half.line(i)[j]);
    half.largest_ = largest;
}

template class EdgeLines<std::uint8_t>;
template class EdgeLines<std::uint16_t>;

}  // namespace deskew
