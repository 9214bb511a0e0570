// For every block the smallest and the largest greys beside the edge pixels in and around it give
// the mean and the deviation of ink and of paper there; the threshold lies between the two.
//
// Two maps are made: one of the thresholds at edges only, one that also holds the level black1 in
// dark areas without edges. Both are filled, so that every block has a threshold, and the higher of
// the two counts.
//
// Only whole blocks have sums, and only blocks whose eight neighbours are whole blocks of the page
// get a threshold of their own; the blocks at the page's edges take theirs from these when the maps
// are filled.
#include "binarization/statistics/sobel_statistics.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "binarization/block_map.h"
#include "binarization/row_ring.h"
#include "binarization/threshold.h"
#include "simd/blocks/block_fill.h"
#include "simd/blocks/edge_block_sums.h"
#include "simd/pixels/threshold_bits.h"

namespace binarization {
namespace {

constexpr int kSmallestSide = 13;
constexpr int kFewestEdgePixels = 9;  // around a block that gets a threshold

// The sums of the last rows of blocks.
class SumsRing {
  public:
    explicit SumsRing(std::size_t blocks) : blocks_(blocks), sums_(3, kSums * blocks) {}

    simd::EdgeBlockSums row(std::size_t i) {
        const auto sum = [&](std::size_t k) { return sums_.row(i) + k * blocks_; };
        return {sum(0), sum(1), sum(2), sum(3), sum(4), sum(5)};
    }

  private:
    static constexpr std::size_t kSums = 6;
    std::size_t blocks_;
    RowRing<std::int32_t> sums_;
};

// The sums over a block and its eight neighbours: at most 144 pixels, so count * squares and
// square of a sum stay below 144 * 144 * 255 * 255 < 2^31.
struct Neighbourhood {
    std::int32_t grey = 0;
    std::int32_t count = 0;
    std::int32_t minima = 0;
    std::int32_t maxima = 0;
    std::int32_t squared_minima = 0;
    std::int32_t squared_maxima = 0;

    void add(const simd::EdgeBlockSums& sums, std::size_t block) {
        grey += sums.grey[block];
        count += sums.count[block];
        minima += sums.minima[block];
        maxima += sums.maxima[block];
        squared_minima += sums.squared_minima[block];
        squared_maxima += sums.squared_maxima[block];
    }
};

// `weight` deviations of values whose sum and sum of squares are given, times their count, to the
// nearest integer.
std::int32_t deviation(std::int32_t count, std::int32_t sum, std::int32_t squares, double weight) {
    return static_cast<std::int32_t>(std::lround(weight * std::sqrt(count * squares - sum * sum)));
}

std::uint8_t threshold_at_edges(const Neighbourhood& around, double weight) {
    const std::int32_t sum = around.minima + around.maxima;
    const std::int32_t deviations =
        deviation(around.count, around.minima, around.squared_minima, weight) +
        deviation(around.count, around.maxima, around.squared_maxima, weight);
    // The grey sum of 144 pixels is divided by 16: the nine-fold mean is what is compared, so only
    // very dark surroundings have the deviations taken off.
    const bool dark = around.grey / 16 <= sum / (2 * around.count);
    const std::int32_t threshold =
        (dark ? sum - deviations : sum + deviations) / (2 * around.count);
    return static_cast<std::uint8_t>(std::clamp(threshold, 0, 255));
}

// The four rows of block row i with what lies above and below them.
simd::BlockRows rows_of_block(const common::GreyView& grey, std::size_t i) {
    simd::BlockRows rows{};
    const auto height = static_cast<std::size_t>(grey.height);
    rows.width = static_cast<std::size_t>(grey.width);
    for (std::size_t k = 0; k < 6; ++k) {
        const std::size_t y = std::clamp<std::size_t>(kBlockPixels * i + k, 1, height) - 1;
        rows.row[k] = grey.row(static_cast<std::ptrdiff_t>(y));
    }
    rows.edges_from = i == 0 ? 1 : 0;
    rows.edges_to = kBlockPixels * (i + 1) == height ? 3 : 4;
    return rows;
}

class Maps {
    BlockMaps maps_;

  public:
    // The first two start empty. Throws std::bad_alloc.
    Maps(std::size_t height, std::size_t width)
        : maps_(3, height, width), edges(maps_[0]), edges_and_dark(maps_[1]), dilated(maps_[2]) {
        edges.clear();
        edges_and_dark.clear();
    }

    BlockMap edges;
    BlockMap edges_and_dark;
    BlockMap dilated;  // working space

    // What the cells hold: without dark cells the maps are the same, and the second one need not be
    // filled.
    bool any_edge = false;
    bool any_dark = false;
};

// Thresholds of the inner blocks of block row i, whose own sums and those of its neighbours are in
// the ring.
void set_thresholds(SumsRing& ring, std::size_t i, std::size_t whole_blocks,
                    const SobelStatistics& parameters, Maps& maps) {
    const simd::EdgeBlockSums rows[3] = {ring.row(i - 1), ring.row(i), ring.row(i + 1)};
    const simd::EdgeBlockSums& own = rows[1];
    const double weight = parameters.sigma / 128.0;
    for (std::size_t j = 1; j + 1 < whole_blocks; ++j) {
        if (own.count[j] == 0) {
            if (own.grey[j] <= 16 * parameters.black1) {
                maps.edges_and_dark.row(i)[j] = parameters.black1;
                maps.any_dark = maps.any_dark || parameters.black1 != 0;
            }
            continue;
        }
        Neighbourhood around;
        for (const auto& row : rows) {
            for (std::size_t block = j - 1; block <= j + 1; ++block) around.add(row, block);
        }
        if (around.count < kFewestEdgePixels) continue;
        const std::uint8_t threshold = threshold_at_edges(around, weight);
        maps.edges.row(i)[j] = threshold;
        maps.edges_and_dark.row(i)[j] = threshold;
        maps.any_edge = maps.any_edge || threshold != 0;
    }
}

void find_block_thresholds(const common::GreyView& grey, const SobelStatistics& parameters,
                           Maps& maps) {
    const auto whole_rows = static_cast<std::size_t>(grey.height) / kBlockPixels;
    const auto whole_blocks = static_cast<std::size_t>(grey.width) / kBlockPixels;
    const int gradient = 3 * parameters.delta1 + 20;
    const simd::EdgeLimits limits{gradient * gradient, parameters.delta2};
    SumsRing ring(whole_blocks);
    for (std::size_t i = 0; i < whole_rows; ++i) {
        simd::sum_edge_blocks(rows_of_block(grey, i), limits, ring.row(i));
        if (i >= 2) set_thresholds(ring, i - 1, whole_blocks, parameters, maps);
    }
}

// Every empty inner cell takes the largest value beside it, all from before the pass.
void dilate_into_empty_cells(const BlockMap& map, BlockMap& dilated) {
    const std::size_t last = map.height() - 1;
    std::memcpy(dilated.row(0), map.row(0), map.width());
    for (std::size_t i = 1; i < last; ++i) {
        simd::dilate_into_empty(map.row(i - 1), map.row(i), map.row(i + 1), map.width(),
                                dilated.row(i));
    }
    std::memcpy(dilated.row(last), map.row(last), map.width());
}

// The higher of the two maps, when each block has a threshold, and of `lowest`: in the first one.
void fill_and_merge(Maps& maps, std::uint8_t lowest) {
    PaddedRows scratch(1, maps.edges.width());
    const auto fill = [&](BlockMap& map) {
        dilate_into_empty_cells(map, maps.dilated);
        propagate_lowest(maps.dilated, scratch, map);
    };
    if (maps.any_edge) fill(maps.edges);
    if (maps.any_dark) fill(maps.edges_and_dark);
    by_rows(
        maps.edges,
        [=](std::uint8_t* row, const std::uint8_t* other, std::size_t width) {
            for (std::size_t j = 0; j < width; ++j) row[j] = std::max({row[j], other[j], lowest});
        },
        maps.edges_and_dark);
}

}  // namespace

void binarize_by_sobel_statistics(const common::GreyView& grey, const SobelStatistics& parameters,
                                  const common::MutableBitonalView& page) {
    std::memset(page.data, 0,
                static_cast<std::size_t>(page.stride) * static_cast<std::size_t>(page.height));
    if (grey.height < kSmallestSide || grey.width < kSmallestSide) {
        return binarize_by_threshold(grey, kAutomaticThreshold, page);
    }
    Maps maps(blocks_along(static_cast<std::size_t>(grey.height)),
              blocks_along(static_cast<std::size_t>(grey.width)));
    find_block_thresholds(grey, parameters, maps);
    fill_and_merge(maps, parameters.black2);
    for (int y = 0; y < page.height; ++y) {
        simd::pack_below_blocks(grey.row(y), static_cast<std::size_t>(page.width),
                                maps.edges.row(static_cast<std::size_t>(y) / kBlockPixels),
                                page.row(y));
    }
}

}  // namespace binarization
