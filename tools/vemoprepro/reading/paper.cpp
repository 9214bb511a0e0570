// The grey of a block's paper is the upper quartile of its greys, since letters darken less than
// three quarters of a block. Where ink fills a block all the same, its grey is replaced by a
// morphological closing over the blocks around it (a dilation, then an erosion). A closing lightens
// narrow shades, too; so blocks in the shade keep their own grey, as far as it falls off gently
// from block to block, which ink does not. A mean over the nearest blocks then smooths the greys.
#include "reading/paper.h"

#include <algorithm>
#include <array>
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

int upper_quartile(const Page& grey, const Box& box) {
    std::array<int, 256> counts{};
    for (int y = box.y; y < box.y + box.height; y += kSampledRows) {
        const unsigned char* row = grey.row(y) + box.x;
        for (int x = 0; x < box.width; ++x) ++counts[row[x]];
    }
    const int wanted = std::max(1, box.width * ((box.height + 1) / kSampledRows) / 4);
    int level = 255;
    for (int seen = counts[255]; level > 0 && seen < wanted;) {
        seen += counts[static_cast<std::size_t>(--level)];
    }
    return level;
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

int white_of(const BlockGrid& paper) {
    std::vector<int> greys = paper.values;
    const auto light = greys.begin() + static_cast<std::ptrdiff_t>(greys.size() * 9 / 10);
    std::nth_element(greys.begin(), light, greys.end());
    return *light;
}

Paper paper_of(const Page& grey) {
    BlockGrid own(grey);
    for (int j = 0; j < own.down; ++j) {
        for (int i = 0; i < own.across; ++i) {
            own.at(i, j) = upper_quartile(grey, own.box(grey, i, j));
        }
    }
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

}  // namespace tool::reading
