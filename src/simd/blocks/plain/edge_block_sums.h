// Plain forms of edge_block_sums.h.
#pragma once

#include <algorithm>

#include "simd/blocks/edge_block_sums.h"

namespace simd::plain {

inline void add_edge_pixel(const std::uint8_t* above, const std::uint8_t* row,
                           const std::uint8_t* below, const EdgeLimits& limits, std::size_t block,
                           const EdgeBlockSums& sums) {
    const int gx = above[1] + 2 * row[1] + below[1] - above[-1] - 2 * row[-1] - below[-1];
    const int gy = below[-1] + 2 * below[0] + below[1] - above[-1] - 2 * above[0] - above[1];
    const auto [least, most] = std::minmax(
        {above[-1], above[0], above[1], row[-1], row[0], row[1], below[-1], below[0], below[1]});
    if (gx * gx + gy * gy < limits.squared_gradient || most - least < limits.contrast) return;
    sums.count[block] += 1;
    sums.minima[block] += least;
    sums.maxima[block] += most;
    sums.squared_minima[block] += least * least;
    sums.squared_maxima[block] += most * most;
}

inline void sum_edge_blocks(const BlockRows& rows, const EdgeLimits& limits,
                            const EdgeBlockSums& sums) {
    for (std::size_t block = 0; block < rows.width / 4; ++block) {
        for (auto* sum : {sums.grey, sums.count, sums.minima, sums.maxima, sums.squared_minima,
                          sums.squared_maxima}) {
            sum[block] = 0;
        }
        for (std::size_t y = 0; y < 4; ++y) {
            for (std::size_t x = 4 * block; x < 4 * block + 4; ++x) {
                sums.grey[block] += rows.row[y + 1][x];
                if (y < rows.edges_from || y >= rows.edges_to || x == 0 || x + 1 == rows.width) {
                    continue;
                }
                add_edge_pixel(rows.row[y] + x, rows.row[y + 1] + x, rows.row[y + 2] + x, limits,
                               block, sums);
            }
        }
    }
}

}  // namespace simd::plain
