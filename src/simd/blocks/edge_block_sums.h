// Sums over the pixels and the edge pixels of 4 x 4 blocks, one row of blocks at a time.
//
// An edge pixel has a strong gradient (both 3 x 3 Sobel responses, undivided: gx * gx + gy * gy is
// the measure) and enough contrast (difference of the largest and the smallest of the nine greys
// around it). The pixels at the page's edge, which lack neighbours, are none.
//
// Use: one call per row of blocks; sums[j] is the block of columns 4 j .. 4 j + 3.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// The four rows of a row of blocks with the row above and the row below: six rows of `width` bytes.
// Rows from .. to - 1 of the four can hold edge pixels; a row above or below that the page has not
// may be any other row of it.
struct BlockRows {
    const std::uint8_t* row[6];
    std::size_t width;  // pixels of the page; what is left behind the last whole block is left out
    std::size_t edges_from = 0;
    std::size_t edges_to = 4;
};

struct EdgeLimits {
    std::int32_t squared_gradient;  // at least; 1 .. 616,225
    std::uint8_t contrast;          // at least
};

// An array for each sum, a number for every whole block. `minima` and `maxima` are those of the
// 3 x 3 pixels around each edge pixel.
struct EdgeBlockSums {
    std::int32_t* grey;  // of all sixteen pixels; the others are of the edge pixels only
    std::int32_t* count;
    std::int32_t* minima;
    std::int32_t* maxima;
    std::int32_t* squared_minima;
    std::int32_t* squared_maxima;
};

// Writes width / 4 numbers of each array.
void sum_edge_blocks(const BlockRows& rows, const EdgeLimits& limits, const EdgeBlockSums& sums);

}  // namespace simd
