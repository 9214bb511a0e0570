// How dark the ink of a grey page is, and how noisy its paper, block by block.
//
// A pixel's depth is how much darker than its paper it is, on a scale where white is kWhiteDepth:
// depths do not change with the light.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "reading/block_grid.h"

namespace tool::reading {

constexpr int kWhiteDepth = 240;

struct BlockDepths {
    int paper = 0;         // its grey, at least 16
    int contrast = 0;      // of its darkest pixels with the paper, in greys
    double noise = 0;      // standard deviation of the noise, as a depth
    bool has_ink = false;  // its darkest pixels stand out of the noise
    double squares = 0;    // sums over the depths of a block with ink
    double cubes = 0;
};

struct PageDepths {
    BlockGrid paper;
    std::vector<bool> paper_seen;
    std::vector<BlockDepths> blocks;         // in the order of the grid's values
    std::array<std::int64_t, 256> of_ink{};  // histogram of the depths in blocks with ink
};

PageDepths depths_of(const Page& grey);

// Whether something stands out of the paper over a hundredth of the page or more.
bool stands_out(const PageDepths& depths);

// How deep the ink of the block and of its neighbours is: the mean of their depths, each counted by
// its square, so that the paper between letters hardly counts.
double depth_of_ink(const PageDepths& depths, int i, int j);

}  // namespace tool::reading
