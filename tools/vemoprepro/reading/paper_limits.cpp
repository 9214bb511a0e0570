// One threshold of depth for the page comes from the histogram of the blocks that have ink, by
// Otsu's method (N. Otsu, A threshold selection method from gray-level histograms, 1979). The other
// blocks would make it the noise of the paper on a page of little ink.
#include "reading/paper_limits.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "reading/limit_bits.h"
#include "reading/paper.h"

namespace tool::reading {
namespace {

// The least thresholds of depth: of a page, and of its pale print.
constexpr double kLeast = 16;
constexpr double kLeastPale = 8;
// In noise the threshold is so many deviations, but not more than this share of the ink's depth.
constexpr double kOverNoise = 5;
constexpr double kNoisyShare = 0.6;
// What is darker than this share of the page's white, has no print and is no paper in the shade, is
// a dark area.
constexpr double kDarkArea = 0.45;
constexpr int kPrintInTheDark = 40;  // greys

// Whether a block is no paper in the shade, and has nothing on it that could be print.
bool is_dark_area(const PageDepths& depths, std::size_t block) {
    return !depths.paper_seen[block] &&
           !(depths.blocks[block].has_ink && depths.blocks[block].contrast >= kPrintInTheDark);
}

}  // namespace

double page_threshold(const PageDepths& depths) {
    double count = 0, sum = 0;
    for (std::size_t d = 0; d < depths.of_ink.size(); ++d) {
        count += static_cast<double>(depths.of_ink[d]);
        sum += static_cast<double>(depths.of_ink[d] * static_cast<std::int64_t>(d));
    }
    double below = 0, sum_below = 0, widest = 0, threshold = kLeast;
    for (std::size_t d = 0; d < depths.of_ink.size(); ++d) {
        below += static_cast<double>(depths.of_ink[d]);
        sum_below += static_cast<double>(depths.of_ink[d] * static_cast<std::int64_t>(d));
        if (below == 0 || below == count) continue;
        const double apart = sum * below / count - sum_below;
        const double between = apart * apart / (below * (count - below));
        if (between > widest) {
            widest = between;
            threshold = static_cast<double>(d) + 1;
        }
    }
    return std::max(threshold, kLeast);
}

BlockGrid limits(const PageDepths& depths, double threshold, double lowest) {
    const double dark_area = kDarkArea * white_of(depths.paper);
    BlockGrid grid = depths.paper;
    for (int j = 0; j < grid.down; ++j) {
        for (int i = 0; i < grid.across; ++i) {
            const BlockDepths& block = depths.blocks[grid.index(i, j)];
            const double ink = depth_of_ink(depths, i, j);
            double depth = threshold;
            if (ink > 0) {
                depth = std::min(depth, std::max({kPaleShare * ink, lowest * depth, kLeastPale}));
            }
            depth = std::max(
                depth, std::min(kOverNoise * block.noise, std::max(threshold, kNoisyShare * ink)));
            double limit = block.paper * (1 - depth / kWhiteDepth);
            if (block.paper < dark_area && is_dark_area(depths, grid.index(i, j))) {
                limit = dark_area;
            }
            grid.at(i, j) = static_cast<int>(std::lround(limit * kLimitParts));
        }
    }
    return grid;
}

}  // namespace tool::reading
