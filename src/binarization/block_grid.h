// Maps of one byte for every 4 x 4 block of a page, and the two ways to give thresholds to blocks
// that have none (0).
//
// Use: BlockGrid map(block rows, block columns); spread(map, out); fill(map, by_mean, spare, out).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "binarization/padded_rows.h"

namespace binarization {

constexpr std::size_t kBlockPixels = 4;

constexpr std::size_t blocks_along(std::size_t pixels) {
    return (pixels + kBlockPixels - 1) / kBlockPixels;
}

class BlockGrid {
  public:
    // Zero everywhere. Throws std::bad_alloc.
    BlockGrid(std::size_t height, std::size_t width)
        : height_(height), width_(width), rows_(height, width) {}

    std::size_t height() const { return height_; }
    std::size_t width() const { return width_; }
    std::uint8_t* row(std::size_t y) { return rows_.row(y); }
    const std::uint8_t* row(std::size_t y) const { return rows_.row(y); }

    // Whether cells have neighbours in both directions.
    bool two_dimensional() const { return height_ > 1 && width_ > 1; }

  private:
    std::size_t height_;
    std::size_t width_;
    PaddedRows rows_;
};

// Calls set(row of out, row of each map, width) for every row.
template <class Set, class... Maps>
void by_rows(BlockGrid& out, const Set& set, const Maps&... maps) {
    for (std::size_t y = 0; y < out.height(); ++y) set(out.row(y), maps.row(y)..., out.width());
}

// Every inner cell that is 0 becomes the mean, rounded down, of its neighbours that are not; one
// without such neighbours stays 0. All maps have the same size.
void spread(const BlockGrid& map, BlockGrid& out);

// Gives empty cells a threshold; a map without any stays as it is.
//
// By the lowest (`by_mean` off): what the filled region that a cell touches has lowest, carried
// from cell to cell right and down, then left and up. A cell that held 255 before is no empty cell.
//
// By the mean: eight spreads, then each cell still empty becomes the mean, rounded down, of the
// filled cells among the 5 x 5 around it, those filled before it included: in raster order, then in
// the reverse of it for those that found none.
//
// `spare` is overwritten by the mean.
void fill(const BlockGrid& map, bool by_mean, BlockGrid& spare, BlockGrid& out);

}  // namespace binarization
