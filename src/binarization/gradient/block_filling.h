// The two ways to give thresholds to blocks that have none, and the steps on block maps that look
// at three rows at a time.
//
// Use: FillingSpace space(blocks across); fill_from_neighbours(map, space.rows); fill(map, by_mean,
// space, out).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "binarization/block_map.h"
#include "frame/buffer.h"
#include "simd/pixels/padded_rows.h"

namespace binarization {

// Working space of the steps on maps of one width.
struct FillingSpace {
    static constexpr std::size_t kReach = 2;  // of the mean around a cell

    // Throws std::bad_alloc.
    explicit FillingSpace(std::size_t width) : rows(2, width), columns(width + 2 * kReach) {}

    PaddedRows rows;
    frame::Buffer<std::uint32_t> columns;
};

// Calls change(the rows around and at i as they were before, row i to be written) for every row
// that has two neighbours. `saved` has two rows of the width of the map.
template <class Change>
void by_inner_rows(BlockMap& map, PaddedRows& saved, const Change& change) {
    const auto keep = [&](std::size_t i) { std::copy_n(map.row(i), map.width(), saved.row(i)); };
    keep(0);
    for (std::size_t i = 1; i + 1 < map.height(); ++i) {
        keep(i);
        change(simd::ThreeRows{saved.row(i - 1), saved.row(i), map.row(i + 1)}, map.row(i));
    }
}

// Every inner cell that is empty takes the mean, rounded down, of its neighbours that are not; one
// without such neighbours stays empty. A map of one row or column has no inner cells.
void fill_from_neighbours(BlockMap& map, PaddedRows& saved);

// Gives empty cells a threshold; a map without any stays as it is.
//
// By the lowest (`by_mean` off): propagate_lowest(), for maps with a threshold from 1 to 254.
//
// By the mean: fill_from_neighbours() eight times, then each cell still empty takes the mean,
// rounded down, of the filled cells among the 5 x 5 around it, those filled before it included: in
// raster order, then in the reverse of it for those that found none.
void fill(const BlockMap& map, bool by_mean, FillingSpace& space, BlockMap& out);

}  // namespace binarization
