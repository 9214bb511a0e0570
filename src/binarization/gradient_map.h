// The threshold of every 4 x 4 block of an image from the edges in it and around it.
//
// Use: ThresholdMaps maps(height, width) in blocks; fill in maps.threshold (mean midpoint of the
// edge pixels of each block, 0 without any), maps.contrast (mean contrast of these pixels) and
// maps.average (mean grey of each block); complete(maps, start, by_mean). maps.threshold is the
// result.
#pragma once

#include "binarization/block_grid.h"

namespace binarization {

struct ThresholdMaps {
    // Throws std::bad_alloc.
    ThresholdMaps(std::size_t height, std::size_t width)
        : threshold(height, width),
          contrast(height, width),
          average(height, width),
          strong(height, width),
          level(height, width),
          spare{{height, width}, {height, width}, {height, width}} {}

    BlockGrid threshold;
    BlockGrid contrast;
    BlockGrid average;

    // Working space.
    BlockGrid strong;
    BlockGrid level;
    BlockGrid spare[3];
};

// start: the edge strength that contrasts are measured by. by_mean: how empty blocks are filled.
void complete(ThresholdMaps& maps, int start, bool by_mean);

}  // namespace binarization
