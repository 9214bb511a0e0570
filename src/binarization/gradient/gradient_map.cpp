// Blocks with edges give a first map. From it and from the strongest of its edges alone two maps
// are filled over the paper; where there are no strong edges the greys of neighbouring blocks give
// a third. The highest of the three counts, so that the thresholds of weak edges, dirt and
// show-through, which are low where they are wrong, do not take ink away from text. Two further
// passes add the strong edges that have a contrast of their own within ever narrower limits.
//
// Choices: the grey of a partial block at the right or bottom edge is the mean of the pixels that
// it has; neighbourhoods end at the edge of the map; the third map is kept where a block has no
// strong edge of its own.
#include "binarization/gradient/gradient_map.h"

#include <cstring>

#include "simd/blocks/block_rows.h"

namespace binarization {
namespace {

using Row = std::uint8_t*;
using ConstRow = const std::uint8_t*;

// How much contrast an edge needs to count as strong, on the scale of the edge strength.
struct StrongFrom {
    int numerator;
    int denominator;
};
constexpr StrongFrom kStrong{17, 12};
constexpr StrongFrom kStronger{5, 3};
constexpr StrongFrom kStrongest{2, 1};

// Selection without a branch, for loops over cells.
std::uint8_t all_ones_if(bool condition) {
    return condition ? 0xFF : 0;
}

// A threshold survives among at least two others, and becomes their mean. Border blocks have no
// full neighbourhood and lose theirs; in a map of a single row or column all are border blocks, and
// all are kept.
void average_supported(BlockMap& map, PaddedRows& saved) {
    if (!map.two_dimensional()) return;
    by_inner_rows(map, saved, [&](const simd::ThreeRows& around, std::uint8_t* row) {
        simd::average_filled_row(around, map.width(), row);
    });
    std::memset(map.row(0), 0, map.width());
    std::memset(map.row(map.height() - 1), 0, map.width());
}

// The cells of `map` whose contrast is above the limit, into `out`; the others are empty there.
void select_strong(const BlockMap& map, const BlockMap& contrast, StrongFrom limit, int start,
                   BlockMap& out) {
    const int above = std::min(start * limit.numerator / limit.denominator, 255);
    by_rows(
        out,
        [=](Row to, ConstRow from, ConstRow contrasts, std::size_t width) {
            const auto most = static_cast<std::uint8_t>(above);
            for (std::size_t j = 0; j < width; ++j) {
                to[j] = from[j] & all_ones_if(contrasts[j] > most);
            }
        },
        map, contrast);
}

void repeat_ends(BlockMap& map) {
    for (std::size_t i = 0; i < map.height(); ++i) {
        map.row(i)[-1] = map.row(i)[0];
        map.row(i)[map.width()] = map.row(i)[map.width() - 1];
    }
}

// `edges`, and in blocks that have neither a threshold there nor a strong edge the grey midway
// between the lightest and the darkest block around them, where these differ enough. Into `out`.
void add_midranges(BlockMap& grey, const BlockMap& edges, const BlockMap& strong, int start,
                   PaddedRows& scratch, BlockMap& out) {
    const std::size_t last = grey.height() - 1;
    const std::size_t width = grey.width();
    const auto limit = static_cast<std::uint8_t>(2 * start / 3);
    std::uint8_t* midranges = scratch.row(0);
    repeat_ends(grey);
    for (std::size_t i = 0; i <= last; ++i) {
        simd::midrange_row(
            {grey.row(i > 0 ? i - 1 : 0), grey.row(i), grey.row(std::min(i + 1, last))}, width,
            limit, midranges);
        ConstRow own = edges.row(i);
        ConstRow strongs = strong.row(i);
        Row to = out.row(i);
        for (std::size_t j = 0; j < width; ++j) {
            to[j] = own[j] | (midranges[j] & all_ones_if((strongs[j] | own[j]) == 0));
        }
    }
}

void raise_to(BlockMap& map, const BlockMap& other) {
    by_rows(
        map,
        [](Row to, ConstRow from, std::size_t width) {
            for (std::size_t j = 0; j < width; ++j) to[j] = std::max(to[j], from[j]);
        },
        other);
}

}  // namespace

// A map that is no longer used gives its memory to one that begins later; the names say what it
// holds from there on.
void find_thresholds(ThresholdMaps& maps, int start, bool by_mean) {
    BlockMap& edges = maps.midpoint;
    BlockMap& strong = maps.working[0];
    PaddedRows& rows = maps.space.rows;
    average_supported(edges, rows);
    select_strong(edges, maps.contrast, kStrong, start, strong);
    fill_from_neighbours(edges, rows);

    BlockMap& edges_and_midranges = maps.working[1];
    add_midranges(maps.grey, edges, strong, start, rows, edges_and_midranges);
    fill(edges_and_midranges, by_mean, maps.space, maps.threshold);

    BlockMap& filled = edges_and_midranges;
    const auto raise_to_filled = [&](const BlockMap& map) {
        fill(map, by_mean, maps.space, filled);
        raise_to(maps.threshold, filled);
    };
    fill_from_neighbours(strong, rows);
    raise_to_filled(edges);
    raise_to_filled(strong);
    BlockMap& stronger = maps.grey;
    for (const StrongFrom limit : {kStronger, kStrongest}) {
        select_strong(strong, maps.contrast, limit, start, stronger);
        fill_from_neighbours(stronger, rows);
        raise_to_filled(stronger);
    }
}

}  // namespace binarization
