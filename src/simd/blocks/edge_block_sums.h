// Sums over the pixels and over the edge pixels of 4 x 4 blocks, one row of blocks at a time.
// plain/edge_block_sums.h says what is summed up.
//
// An edge pixel has a steep gradient (gx * gx + gy * gy, of the two 3 x 3 Sobel responses,
// undivided, reaches a limit) and enough contrast (the difference of the largest and the smallest
// of the nine greys around and at it). The pixels at the page's edge, which lack neighbours, are
// none.
//
// Use: one call per row of blocks; sums[j] is that of the block of columns 4 j .. 4 j + 3. Nothing
// is read beyond the pixels of a row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// The four rows of a row of blocks, between the row above and the row below: six rows of `width`
// pixels. Only rows edges_from .. edges_to - 1 of the four can have edge pixels. Where the page has
// no row above or below, any other row of it stands in.
struct BlockRows {
    const std::uint8_t* row[6];
    std::size_t width;  // of the page; pixels behind the last full block are left out
    std::size_t edges_from = 0;
    std::size_t edges_to = 4;
};

struct EdgeLimits {
    std::int32_t squared_gradient;  // at least; 1 .. 616,225
    std::uint8_t contrast;          // at least
};

// An array for each sum, with a number for every full block. `minima` and `maxima` are the least
// and the greatest of the 3 x 3 pixels around each edge pixel.
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
