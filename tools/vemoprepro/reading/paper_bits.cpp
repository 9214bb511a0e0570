// One threshold of depth for the page comes from the histogram of the blocks that have ink, by
// Otsu's method (N. Otsu, A threshold selection method from gray-level histograms, 1979). The other
// blocks would make it the noise of the paper on a page of little ink.
//
// Print that is much paler than the rest of its page breaks into crumbs by that. So the page is
// made again with a lower threshold wherever all ink around is pale. Mended letters have fewer
// pieces and more closed bowls than broken ones, noise and stains that come up have more pieces:
// the second page is the better one when its Euler number is clearly the smaller one.
#include "reading/paper_bits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "page/ink.h"
#include "reading/block_depths.h"
#include "reading/euler_number.h"
#include "reading/paper.h"

namespace tool::reading {
namespace {

// The least thresholds of depth: of a page, and of its pale print.
constexpr double kLeast = 16;
constexpr double kLeastPale = 8;
// The threshold for pale print: this share of its depth, and at least this share of the page's.
constexpr double kPaleShare = 0.45;
constexpr double kLowestShare = 0.4;
// In noise the threshold is so many deviations, but not more than this share of the ink's depth.
constexpr double kOverNoise = 5;
constexpr double kNoisyShare = 0.6;
// What is darker than this share of the page's white, has no print and is no paper in the shade, is
// a dark area.
constexpr double kDarkArea = 0.45;
constexpr int kPrintInTheDark = 40;  // greys
// The page with pale print is taken when this share of the pieces is left.
constexpr double kMended = 5.0 / 6;
// A lower threshold is tried where it would be below this share in one block with ink of so many.
constexpr double kPale = 0.8;
constexpr int kPaleBlocks = 8;
// Thresholds between blocks are interpolated in sixteenths of a grey.
constexpr int kParts = 16;

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

// Whether a block is no paper in the shade, and has nothing on it that could be print.
bool is_dark_area(const PageDepths& depths, std::size_t block) {
    return !depths.paper_seen[block] &&
           !(depths.blocks[block].has_ink && depths.blocks[block].contrast >= kPrintInTheDark);
}

// What is no lighter than its block's limit becomes black. lowest: the share of the page's
// threshold that is enough for pale print.
BlockGrid limits(const PageDepths& depths, double threshold, double lowest) {
    const double dark_area = kDarkArea * white_of(depths.paper);
    BlockGrid grid = depths.paper;
    for (int j = 0; j < grid.down; ++j) {
        for (int i = 0; i < grid.across; ++i) {
            const BlockDepths& block = depths.blocks[grid.index(i, j)];
            const double ink = depth_of_ink(depths, i, j);
            double depth =
                std::min(threshold, std::max({kPaleShare * ink, lowest * threshold, kLeastPale}));
            depth = std::max(
                depth, std::min(kOverNoise * block.noise, std::max(threshold, kNoisyShare * ink)));
            double limit = block.paper * (1 - depth / kWhiteDepth);
            if (block.paper < dark_area && is_dark_area(depths, grid.index(i, j))) {
                limit = dark_area;
            }
            grid.at(i, j) = static_cast<int>(std::lround(limit * kParts));
        }
    }
    return grid;
}

constexpr int kTogether = 16;  // pixels are marked at a time
constexpr int kLongestStretch = 64;

using Offsets = std::array<std::uint16_t, kLongestStretch>;  // 0, 1, 2 ...

// Marks the pixels that are no lighter than a limit which begins at `limit` and grows by `step`
// from pixel to pixel, both in 256ths of a grey.
void mark_dark(const unsigned char* __restrict greys, int count, std::uint16_t limit,
               std::uint16_t step, const Offsets& offsets, unsigned char* __restrict marks) {
    const std::uint16_t* __restrict offset = offsets.data();
    for (int x = 0; x < count; ++x) {
        const auto here =
            static_cast<std::uint16_t>(limit + static_cast<unsigned>(offset[x]) * step);
        marks[x] = greys[x] <= static_cast<unsigned char>(here >> 8) ? 1 : 0;
    }
}

// 1 for every pixel of a row that is no lighter than the limit there.
void mark_dark_row(const unsigned char* greys, int width, const BlockRows& limits,
                   const Offsets& offsets, unsigned char* marks) {
    // Products with these, rounded down, are the exact quotients of the small numbers here: rounded
    // up by so little they do not get past a whole number.
    constexpr double kRoundedUp = 1 + 1e-11;
    const double part = kRoundedUp * 256 / (limits.scale() * kParts);
    for (int k = 0; k < limits.stretches(); ++k) {
        const auto [x, count, first, step] = limits.stretch(k);
        const int from = static_cast<int>(first * part);
        const int to = static_cast<int>((first + (count - 1) * step) * part);
        // Whole vectors are faster: what is too much belongs to later stretches.
        const int whole = (count + kTogether - 1) / kTogether * kTogether;
        mark_dark(greys + x, x + whole <= width ? whole : count, static_cast<std::uint16_t>(from),
                  static_cast<std::uint16_t>((to - from) / std::max(1, count - 1)), offsets,
                  marks + x);
    }
}

Page bits_within(const Page& grey, const BlockGrid& limits) {
    Page bits = make_page_like(grey, PageKind::kBitonal);
    BlockRows rows(limits, grey.width);
    std::vector<unsigned char> marks(8 * bits.stride());
    Offsets offsets;
    std::iota(offsets.begin(), offsets.end(), static_cast<std::uint16_t>(0));
    for (int y = 0; y < grey.height; ++y) {
        rows.begin(y);
        mark_dark_row(grey.row(y), grey.width, rows, offsets, marks.data());
        unsigned char* ink = bits.row(y);
        for (std::size_t i = 0; i < bits.stride(); ++i) ink[i] = ink_byte(&marks[8 * i]);
    }
    return bits;
}

// Whether enough of the page's ink is so pale that a lower threshold may mend it.
bool has_pale_print(const PageDepths& depths, double threshold) {
    int pale = 0, all = 0;
    for (int j = 0; j < depths.paper.down; ++j) {
        for (int i = 0; i < depths.paper.across; ++i) {
            if (!depths.blocks[depths.paper.index(i, j)].has_ink) continue;
            pale += kPaleShare * depth_of_ink(depths, i, j) < kPale * threshold ? 1 : 0;
            ++all;
        }
    }
    return pale * kPaleBlocks > all;
}

}  // namespace

Page bits_by_paper(const Page& grey) {
    const PageDepths depths = depths_of(grey);
    const double threshold = page_threshold(depths);
    Page bits = bits_within(grey, limits(depths, threshold, 1));
    if (!has_pale_print(depths, threshold)) return bits;
    Page with_pale = bits_within(grey, limits(depths, threshold, kLowestShare));
    const auto pieces = static_cast<double>(euler_number(with_pale));
    const bool mended = pieces > 0 && pieces < kMended * static_cast<double>(euler_number(bits));
    return mended ? std::move(with_pale) : std::move(bits);
}

}  // namespace tool::reading
