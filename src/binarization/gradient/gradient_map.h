// The threshold of every 4 x 4 block of an image from the edges in it and around it.
//
// Use: ThresholdMaps maps(height, width) in blocks; fill in what is known of each block:
// maps.midpoint and maps.contrast, the means of the midpoints and of the contrasts of its edge
// pixels (0 without any), and maps.grey, the mean of all its pixels. find_thresholds(maps, start,
// by_mean) then gives maps.threshold, and leaves the others undefined.
#pragma once

#include "binarization/block_map.h"
#include "binarization/gradient/block_filling.h"

namespace binarization {

class ThresholdMaps {
    BlockMaps maps_;

  public:
    // The maps are not initialised. Throws std::bad_alloc.
    ThresholdMaps(std::size_t height, std::size_t width)
        : maps_(6, height, width),
          midpoint(maps_[0]),
          contrast(maps_[1]),
          grey(maps_[2]),
          threshold(maps_[3]),
          working{maps_[4], maps_[5]},
          space(width) {}

    BlockMap midpoint;
    BlockMap contrast;
    BlockMap grey;
    BlockMap threshold;

    // Working space.
    BlockMap working[2];
    FillingSpace space;
};

// start: the edge strength that contrasts are measured by. by_mean: how empty blocks are filled.
void find_thresholds(ThresholdMaps& maps, int start, bool by_mean);

}  // namespace binarization
