// The threshold of every 4 x 4 block of an image from the edges in it and around it.
//
// Use: ThresholdMaps maps(height, width) in blocks; fill in maps.threshold (mean midpoint of the
// edge pixels of each block, 0 without any), maps.contrast (mean contrast of these pixels) and
// maps.average (mean grey of each block); complete(maps, start, by_mean). maps.result then holds
// the thresholds. Maps are not initialised.
#pragma once

#include "binarization/gradient/block_grid.h"

namespace binarization {

class ThresholdMaps {
    BlockGrids grids_;

  public:
    // Throws std::bad_alloc.
    ThresholdMaps(std::size_t height, std::size_t width)
        : grids_(6, height, width),
          threshold(grids_[0]),
          contrast(grids_[1]),
          average(grids_[2]),
          result(grids_[3]),
          strong(grids_[4]),
          filled(grids_[5]),
          scratch(width) {}

    BlockGrid threshold;
    BlockGrid contrast;
    BlockGrid average;
    BlockGrid result;

    // Working space.
    BlockGrid strong;
    BlockGrid filled;
    GridScratch scratch;
};

// start: the edge strength that contrasts are measured by. by_mean: how empty blocks are filled.
void complete(ThresholdMaps& maps, int start, bool by_mean);

}  // namespace binarization
