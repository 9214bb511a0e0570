// Blocks with edges give a first map. From it and from the strongest of its edges alone two maps
// are spread and filled over the paper; where there are no strong edges the greys of neighbouring
// blocks give a third. The highest of the three counts, so that the thresholds of weak edges, dirt
// and show-through, which are low where they are wrong, do not take ink away from text. Two further
// passes add the strong edges that have a contrast of their own within ever narrower limits.
//
// Choices: the grey of a partial block at the right or bottom edge is the mean of the pixels that
// it has; neighbourhoods end at the edge of the map; the third map is kept where a block has no
// strong edge of its own.
#include "binarization/gradient_map.h"

#include <cstring>
#include <utility>

#include "simd/block_rows.h"

namespace binarization {
namespace {

using Row = std::uint8_t*;
using ConstRow = const std::uint8_t*;

// A threshold survives among at least two others. Border blocks have no full neighbourhood and
// lose theirs; in a map of a single row or column all are border blocks, and all are kept.
void clean(BlockGrid& map, BlockGrid& spare) {
    if (!map.two_dimensional()) return;
    const std::size_t last = map.height() - 1;
    std::memset(spare.row(0), 0, map.width());
    std::memset(spare.row(last), 0, map.width());
    for (std::size_t y = 1; y < last; ++y) {
        simd::clean_row({map.row(y - 1), map.row(y), map.row(y + 1)}, map.width(), spare.row(y));
    }
    std::swap(map, spare);
}

void spread_in_place(BlockGrid& map, BlockGrid& spare) {
    if (!map.two_dimensional()) return;
    spread(map, spare);
    std::swap(map, spare);
}

// Cells of `map` whose contrast is above a multiple of the edge strength: contrast * own > start *
// of.
void keep_contrast(const BlockGrid& map, const BlockGrid& contrast, int own, int of, int start,
                   BlockGrid& out) {
    by_rows(
        out,
        [=](Row to, ConstRow from, ConstRow contrasts, std::size_t width) {
            for (std::size_t x = 0; x < width; ++x) {
                to[x] = contrasts[x] * own > start * of ? from[x] : std::uint8_t{0};
            }
        },
        map, contrast);
}

// Midway between the lightest and the darkest of the blocks around a block, where they differ
// enough and the block has no strong edge.
void take_levels(ThresholdMaps& maps, int start) {
    const std::size_t height = maps.average.height();
    const std::size_t width = maps.average.width();
    for (std::size_t y = 0; y < height; ++y) {
        const ConstRow rows[3] = {maps.average.row(y > 0 ? y - 1 : 0), maps.average.row(y),
                                  maps.average.row(std::min(y + 1, height - 1))};
        for (std::size_t x = 0; x < width; ++x) {
            int least = 255;
            int most = 0;
            for (ConstRow row : rows) {
                for (std::size_t at = x > 0 ? x - 1 : 0; at <= std::min(x + 1, width - 1); ++at) {
                    least = std::min<int>(least, row[at]);
                    most = std::max<int>(most, row[at]);
                }
            }
            const bool kept = 3 * (most - least) > 2 * start && maps.strong.row(y)[x] == 0;
            maps.level.row(y)[x] = static_cast<std::uint8_t>(kept ? (most + least) >> 1 : 0);
        }
    }
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
    auto& [result, filled, spare] = maps.spare;
    clean(maps.threshold, spare);
    keep_contrast(maps.threshold, maps.contrast, 12, 17, start, maps.strong);
    take_levels(maps, start);
    spread_in_place(maps.threshold, spare);
    spread_in_place(maps.strong, spare);
    by_rows(
        maps.level,
        [](Row to, ConstRow from, std::size_t width) {
            for (std::size_t x = 0; x < width; ++x) to[x] = from[x] != 0 ? from[x] : to[x];
        },
        maps.threshold);

    fill(maps.threshold, by_mean, spare, result);
    for (const BlockGrid* map : {&maps.strong, &maps.level}) {
        fill(*map, by_mean, spare, filled);
        raise_to(result, filled);
    }
    for (const auto& [own, of] : {std::pair{3, 5}, std::pair{1, 2}}) {
        keep_contrast(maps.strong, maps.contrast, own, of, start, maps.level);
        spread_in_place(maps.level, spare);
        fill(maps.level, by_mean, spare, filled);
        raise_to(result, filled);
    }
    std::swap(maps.threshold, result);
}

}  // namespace binarization
