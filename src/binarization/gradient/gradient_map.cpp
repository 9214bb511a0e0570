// Blocks with edges give a first map. From it and from the strongest of its edges alone two maps
// are spread and filled over the paper; where there are no strong edges the greys of neighbouring
// blocks give a third. The highest of the three counts, so that the thresholds of weak edges, dirt
// and show-through, which are low where they are wrong, do not take ink away from text. Two further
// passes add the strong edges that have a contrast of their own within ever narrower limits.
//
// Choices: the grey of a partial block at the right or bottom edge is the mean of the pixels that
// it has; neighbourhoods end at the edge of the map; the third map is kept where a block has no
// strong edge of its own.
#include "binarization/gradient/gradient_map.h"

#include <cstring>
#include <utility>

#include "simd/blocks/block_rows.h"

namespace binarization {
namespace {

using Row = std::uint8_t*;
using ConstRow = const std::uint8_t*;

// Selection without a branch, for loops over cells.
std::uint8_t all_ones_if(bool condition) {
    return condition ? 0xFF : 0;
}

// A threshold survives among at least two others. Border blocks have no full neighbourhood and
// lose theirs; in a map of a single row or column all are border blocks, and all are kept.
void clean(BlockGrid& map, PaddedRows& saved) {
    if (!map.two_dimensional()) return;
    by_inner_rows(map, saved, [&](const simd::ThreeRows& around, std::uint8_t* row) {
        simd::average_filled_row(around, map.width(), row);
    });
    std::memset(map.row(0), 0, map.width());
    std::memset(map.row(map.height() - 1), 0, map.width());
}

// Cells of `map` whose contrast is above a multiple of the edge strength: contrast * own > start *
// of.
void keep_contrast(const BlockGrid& map, const BlockGrid& contrast, int own, int of, int start,
                   BlockGrid& out) {
    const auto limit = static_cast<std::uint8_t>(std::min(start * of / own, 255));
    by_rows(
        out,
        [=](Row to, ConstRow from, ConstRow contrasts, std::size_t width) {
            for (std::size_t x = 0; x < width; ++x) {
                to[x] = from[x] & all_ones_if(contrasts[x] > limit);
            }
        },
        map, contrast);
}

// Midway between the lightest and the darkest of the blocks around a block, where they differ
// enough and the block has no strong edge. Into `filled`.
void take_levels(ThresholdMaps& maps, int start) {
    BlockGrid& greys = maps.average;
    const std::size_t last = greys.height() - 1;
    const std::size_t width = greys.width();
    const auto limit = static_cast<std::uint8_t>(2 * start / 3);
    for (std::size_t y = 0; y <= last; ++y) {
        greys.row(y)[-1] = greys.row(y)[0];
        greys.row(y)[width] = greys.row(y)[width - 1];
    }
    for (std::size_t y = 0; y <= last; ++y) {
        const simd::ThreeRows around{greys.row(y > 0 ? y - 1 : 0), greys.row(y),
                                     greys.row(std::min(y + 1, last))};
        simd::midrange_row(around, width, limit, maps.filled.row(y));
    }
}

// Blocks without a threshold take the level between the blocks around them; those with a strong
// edge of their own take none. Into `out`, which is used no more otherwise.
void put_levels_between(const BlockGrid& thresholds, const BlockGrid& strong,
                        const BlockGrid& levels, BlockGrid& out) {
    by_rows(
        out,
        [](Row to, ConstRow own, ConstRow strongs, ConstRow between, std::size_t width) {
            for (std::size_t x = 0; x < width; ++x) {
                // One of the two is 0.
                to[x] = own[x] | (between[x] & all_ones_if((strongs[x] | own[x]) == 0));
            }
        },
        thresholds, strong, levels);
}

void raise_to(BlockGrid& map, const BlockGrid& other) {
    by_rows(
        map,
        [](Row to, ConstRow from, std::size_t width) {
            for (std::size_t x = 0; x < width; ++x) to[x] = std::max(to[x], from[x]);
        },
        other);
}

}  // namespace

void complete(ThresholdMaps& maps, int start, bool by_mean) {
    BlockGrid& levels = maps.average;
    const auto fill_and_raise = [&](const BlockGrid& map) {
        fill(map, by_mean, maps.scratch, maps.filled);
        raise_to(maps.result, maps.filled);
    };
    clean(maps.threshold, maps.scratch.rows);
    keep_contrast(maps.threshold, maps.contrast, 12, 17, start, maps.strong);
    take_levels(maps, start);
    spread(maps.threshold, maps.scratch.rows);
    put_levels_between(maps.threshold, maps.strong, maps.filled, levels);
    spread(maps.strong, maps.scratch.rows);

    fill(maps.threshold, by_mean, maps.scratch, maps.result);
    fill_and_raise(maps.strong);
    fill_and_raise(levels);
    BlockGrid& stronger = maps.threshold;
    for (const auto& [own, of] : {std::pair{3, 5}, std::pair{1, 2}}) {
        keep_contrast(maps.strong, maps.contrast, own, of, start, stronger);
        spread(stronger, maps.scratch.rows);
        fill_and_raise(stronger);
    }
}

}  // namespace binarization
