// Noise is measured by the difference of two second derivatives (J. Immerkaer, Fast noise variance
// estimation, 1996), which straight edges leave out, and by its median, which letters leave alone.
// One row in two or four is enough for all of this.
#include "reading/block_depths.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "reading/paper.h"

namespace tool::reading {
namespace {

constexpr int kDarkestPaper = 16;
// A block has ink when one pixel in 32 is as deep as this and as so many deviations of the noise.
constexpr int kDarkShare = 32;
constexpr int kInk = 12;
constexpr double kInkOverNoise = 6;
constexpr int kNoiseRows = 4;
constexpr int kDepthRows = 2;

using Counts = std::array<int, 256>;

// The smallest value that so many of those counted do not exceed.
int level_reached(const Counts& counts, int wanted) {
    std::size_t level = 0;
    for (int seen = counts[0]; level < 255 && seen < wanted;) seen += counts[++level];
    return static_cast<int>(level);
}

// Of the noise, in greys.
double deviation(const Page& grey, const Box& box) {
    constexpr int kParts = 4;  // of a response fall together, and the strongest ones
    Counts counts{};
    int seen = 0;
    const int bottom = std::min(box.y + box.height, grey.height - 1);
    const int right = std::min(box.x + box.width, grey.width - 1);
    for (int y = std::max(box.y, 1); y < bottom; y += kNoiseRows) {
        const unsigned char *above = grey.row(y - 1), *own = grey.row(y), *below = grey.row(y + 1);
        const auto across = [&](int x) { return above[x] - 2 * own[x] + below[x]; };
        for (int x = std::max(box.x, 1); x < right; ++x, ++seen) {
            const int response = across(x - 1) - 2 * across(x) + across(x + 1);
            ++counts[static_cast<std::size_t>(std::min(std::abs(response) / kParts, 255))];
        }
    }
    // The operator's deviation is 6 times that of the noise, the median of normally distributed
    // sizes 0.6745 times their deviation.
    return level_reached(counts, seen / 2) * kParts / (6 * 0.6745);
}

Counts count_greys(const Page& grey, const Box& box) {
    Counts counts{};
    for (int y = box.y; y < box.y + box.height; y += kDepthRows) {
        const unsigned char* row = grey.row(y) + box.x;
        for (int x = 0; x < box.width; ++x) ++counts[row[x]];
    }
    return counts;
}

void add_depths(const Counts& greys, BlockDepths& block, std::array<std::int64_t, 256>& of_ink) {
    for (int level = 0; level < 256; ++level) {
        const int count = greys[static_cast<std::size_t>(level)];
        if (count == 0) continue;
        const int depth = std::max(0, kWhiteDepth - level * kWhiteDepth / block.paper);
        of_ink[static_cast<std::size_t>(depth)] += count;
        block.squares += double{1} * count * depth * depth;
        block.cubes += double{1} * count * depth * depth * depth;
    }
}

BlockDepths measure(const Page& grey, const Box& box, int paper,
                    std::array<std::int64_t, 256>& of_ink) {
    BlockDepths block;
    block.paper = std::max(paper, kDarkestPaper);
    block.noise = deviation(grey, box) * kWhiteDepth / block.paper;
    const Counts greys = count_greys(grey, box);
    const int darkest =
        level_reached(greys, std::max(1, box.width * box.height / kDepthRows / kDarkShare));
    block.contrast = block.paper - darkest;
    const int depth = kWhiteDepth - darkest * kWhiteDepth / block.paper;
    block.has_ink = depth >= std::max<double>(kInk, kInkOverNoise * block.noise);
    if (block.has_ink) add_depths(greys, block, of_ink);
    return block;
}

}  // namespace

PageDepths depths_of(const Page& grey) {
    Paper paper = paper_of(grey);
    PageDepths depths{std::move(paper.greys), std::move(paper.seen), {}};
    depths.blocks.reserve(depths.paper.values.size());
    for (int j = 0; j < depths.paper.down; ++j) {
        for (int i = 0; i < depths.paper.across; ++i) {
            depths.blocks.push_back(
                measure(grey, depths.paper.box(grey, i, j), depths.paper.at(i, j), depths.of_ink));
        }
    }
    return depths;
}

double depth_of_ink(const PageDepths& depths, int i, int j) {
    const BlockGrid& grid = depths.paper;
    double squares = 0, cubes = 0;
    for (int v = std::max(0, j - 1); v <= std::min(grid.down - 1, j + 1); ++v) {
        for (int u = std::max(0, i - 1); u <= std::min(grid.across - 1, i + 1); ++u) {
            const BlockDepths& block = depths.blocks[grid.index(u, v)];
            squares += block.squares;
            cubes += block.cubes;
        }
    }
    return squares > 0 ? cubes / squares : 0;
}

}  // namespace tool::reading
