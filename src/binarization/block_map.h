// Maps of one byte for every 4 x 4 block of a page: where local thresholds are collected before
// they are applied. 0 stands for a block without a threshold, an empty cell.
//
// Use: BlockMaps maps(n, blocks down, blocks across); maps[0].row(i)[j] is the block of the pixels
// 4 i .. 4 i + 3 down and 4 j .. 4 j + 3 across. The last block of a row or column takes the pixels
// that are left.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "binarization/row_ring.h"
#include "frame/buffer.h"

namespace binarization {

constexpr std::size_t kBlockPixels = 4;  // along each side

constexpr std::size_t blocks_along(std::size_t pixels) {
    return (pixels + kBlockPixels - 1) / kBlockPixels;
}

// One map; somebody else owns the cells. Rows are padded as simd/pixels/padded_rows.h says.
class BlockMap {
  public:
    BlockMap(std::uint8_t* cells, std::size_t height, std::size_t width, std::size_t pitch)
        : cells_(cells), height_(height), width_(width), pitch_(pitch) {}

    std::size_t height() const { return height_; }
    std::size_t width() const { return width_; }
    std::uint8_t* row(std::size_t i) { return cells_ + i * pitch_; }
    const std::uint8_t* row(std::size_t i) const { return cells_ + i * pitch_; }

    // Whether cells have neighbours in both directions.
    bool two_dimensional() const { return height_ > 1 && width_ > 1; }

    void clear() {
        for (std::size_t i = 0; i < height_; ++i) std::memset(row(i), 0, width_);
    }

  private:
    std::uint8_t* cells_;
    std::size_t height_;
    std::size_t width_;
    std::size_t pitch_;
};

// Several maps of one size in one block of memory: the C library keeps a large block at hand for
// the next page where it would give small ones back to the system.
class BlockMaps {
  public:
    // Not initialised. Throws std::bad_alloc.
    BlockMaps(std::size_t count, std::size_t height, std::size_t width)
        : height_(height),
          width_(width),
          pitch_(64 * whole_words(width) + simd::kRowPad),
          cells_(count * height * pitch_ + simd::kRowPad) {}

    BlockMap operator[](std::size_t index) {
        return {cells_.data() + index * height_ * pitch_ + simd::kRowPad, height_, width_, pitch_};
    }

  private:
    std::size_t height_;
    std::size_t width_;
    std::size_t pitch_;
    frame::Buffer<std::uint8_t> cells_;
};

// Calls set(row of out, row of each map, width) for every row.
template <class Set, class... Maps>
void by_rows(BlockMap& out, const Set& set, const Maps&... maps) {
    for (std::size_t i = 0; i < out.height(); ++i) set(out.row(i), maps.row(i)..., out.width());
}

// Gives every empty cell the lowest threshold of the filled region that it touches, carried from
// cell to cell right and down, then left and up; 255 where there is none. Rows beyond the map add
// nothing. `scratch` has a row of the width of the map, and `out` is another map.
void propagate_lowest(const BlockMap& map, PaddedRows& scratch, BlockMap& out);

}  // namespace binarization
