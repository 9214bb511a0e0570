// Maps of one byte for every 4 x 4 block of a page, and the two ways to give thresholds to blocks
// that have none (0).
//
// Use: BlockGrids maps(n, block rows, block columns); maps[0] and so on; spread(map, saved);
// fill(map, by_mean, scratch, out).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "binarization/blocks.h"
#include "binarization/gradient/padded_rows.h"
#include "frame/buffer.h"
#include "simd/pixels/padded_rows.h"

namespace binarization {

// One map; somebody else owns the cells.
class BlockGrid {
  public:
    BlockGrid(std::uint8_t* cells, std::size_t height, std::size_t width, std::size_t pitch)
        : cells_(cells), height_(height), width_(width), pitch_(pitch) {}

    std::size_t height() const { return height_; }
    std::size_t width() const { return width_; }
    std::uint8_t* row(std::size_t y) { return cells_ + y * pitch_; }
    const std::uint8_t* row(std::size_t y) const { return cells_ + y * pitch_; }

    // Whether cells have neighbours in both directions.
    bool two_dimensional() const { return height_ > 1 && width_ > 1; }

  private:
    std::uint8_t* cells_;
    std::size_t height_;
    std::size_t width_;
    std::size_t pitch_;
};

// Several maps of one size in one block of memory: the C library keeps a large block at hand for
// the next page where it would give small ones back to the system.
class BlockGrids {
  public:
    // Not initialised. Throws std::bad_alloc.
    BlockGrids(std::size_t count, std::size_t height, std::size_t width)
        : height_(height),
          width_(width),
          rows_(count * height, width, PaddedRows::kUninitialized) {}

    BlockGrid operator[](std::size_t index) {
        return {rows_.row(index * height_), height_, width_, rows_.pitch()};
    }

  private:
    std::size_t height_;
    std::size_t width_;
    PaddedRows rows_;
};

// Working space of the steps on maps of one width.
struct GridScratch {
    static constexpr std::size_t kReach = 2;  // of the mean around a cell

    // Throws std::bad_alloc.
    explicit GridScratch(std::size_t width) : rows(2, width), columns(width + 2 * kReach) {}

    PaddedRows rows;
    frame::Buffer<std::uint32_t> columns;
};

// Calls set(row of out, row of each map, width) for every row.
template <class Set, class... Maps>
void by_rows(BlockGrid& out, const Set& set, const Maps&... maps) {
    for (std::size_t y = 0; y < out.height(); ++y) set(out.row(y), maps.row(y)..., out.width());
}

// Calls change(the rows around and at y as they were before, row y to be written) for every row
// that has two neighbours. `saved` has two rows of the width of the map.
template <class Change>
void by_inner_rows(BlockGrid& map, PaddedRows& saved, const Change& change) {
    const auto keep = [&](std::size_t y) { std::copy_n(map.row(y), map.width(), saved.row(y)); };
    keep(0);
    for (std::size_t y = 1; y + 1 < map.height(); ++y) {
        keep(y);
        change(simd::ThreeRows{saved.row(y - 1), saved.row(y), map.row(y + 1)}, map.row(y));
    }
}

// Every inner cell that is 0 becomes the mean, rounded down, of its neighbours that are not; one
// without such neighbours stays 0. A map of one row or column has no inner cells.
void spread(BlockGrid& map, PaddedRows& saved);

// Gives empty cells a threshold; a map without any stays as it is.
//
// By the lowest (`by_mean` off): what the filled region that a cell touches has lowest, carried
// from cell to cell right and down, then left and up. A cell that held 255 before is no empty cell.
//
// By the mean: eight spreads, then each cell still empty becomes the mean, rounded down, of the
// filled cells among the 5 x 5 around it, those filled before it included: in raster order, then in
// the reverse of it for those that found none.
void fill(const BlockGrid& map, bool by_mean, GridScratch& scratch, BlockGrid& out);

}  // namespace binarization
