// The grey of a block's paper is the upper quartile of its greys, since letters darken less than
// three quarters of a block. Where ink fills a block all the same, its grey is replaced by a
// morphological closing over the blocks around it (a dilation, then an erosion). A closing lightens
// narrow shades, too; so blocks in the shade keep their own grey, as far as it falls off gently
// from block to block, which ink does not. A mean over the nearest blocks then smooths the greys.
#include "reading/paper.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tool::reading {
namespace {

// Light falls off from block to block by less than this, in per cent; ink does so at once.
constexpr int kGentle = 80;
// Paper in the light has so much of the page's white, in per cent.
constexpr int kLit = 60;
// One row in so many is enough for a block's quartile.
constexpr int kSampledRows = 2;

void close(BlockGrid& grid, int reach) {
    fold_around(grid, reach, largest);
    fold_around(grid, reach, smallest);
}

bool falls_gently(int from, int to) {
    return to * 100 >= from * kGentle;
}

// Light blocks that are as light as their surroundings, and from there all that gently lead away
// into the shade.
std::vector<bool> seen_blocks(const BlockGrid& own, const BlockGrid& around) {
    const int light = white_of(own) * kLit / 100;
    std::vector<bool> seen(own.values.size());
    std::vector<std::pair<int, int>> open;
    const auto see = [&](int i, int j) {
        if (seen[own.index(i, j)]) return;
        seen[own.index(i, j)] = true;
        open.emplace_back(i, j);
    };
    for (int j = 0; j < own.down; ++j) {
        for (int i = 0; i < own.across; ++i) {
            const int grey = own.at(i, j);
            if (grey >= light && falls_gently(around.at(i, j), grey)) see(i, j);
        }
    }
    while (!open.empty()) {
        const auto [i, j] = open.back();
        open.pop_back();
        for (const auto& [u, v] : {std::pair{i - 1, j}, {i + 1, j}, {i, j - 1}, {i, j + 1}}) {
            if (u < 0 || v < 0 || u >= own.across || v >= own.down) continue;
            if (falls_gently(own.at(i, j), own.at(u, v))) see(u, v);
        }
    }
    return seen;
}

}  // namespace

GreyCounts count_greys(const Page& grey, const Box& block) {
    return {grey.row(block.y) + block.x, kSampledRows * grey.stride(), block.width,
            (block.height + kSampledRows - 1) / kSampledRows};
}

int upper_quartile(const GreyCounts& block) {
    return block.reached_from_above(std::max(1, block.counted() / 4));
}

int white_of(const BlockGrid& paper) {
    std::vector<int> greys = paper.values;
    const auto light = greys.begin() + static_cast<std::ptrdiff_t>(greys.size() * 9 / 10);
    std::nth_element(greys.begin(), light, greys.end());
    return *light;
}

Paper paper_from(BlockGrid own) {
    BlockGrid greys = own;
    close(greys, kReach);
    close(own, 1);
    const std::vector<bool> seen = seen_blocks(own, greys);
    for (std::size_t k = 0; k < seen.size(); ++k) {
        if (seen[k]) greys.values[k] = own.values[k];
    }
    fold_around(greys, 1, mean);
    return {std::move(greys), seen};
}

Paper paper_of(const Page& grey) {
    BlockGrid quartiles(grey);
    for (int j = 0; j < quartiles.down; ++j) {
        for (int i = 0; i < quartiles.across; ++i) {
            quartiles.at(i, j) = upper_quartile(count_greys(grey, quartiles.box(grey, i, j)));
        }
    }
    return paper_from(std::move(quartiles));
}

}  // namespace tool::reading
