// Rows of maps that hold one byte for every 4 x 4 block of a page; where that is a threshold, 0
// stands for a block without one.
//
// Keep true: rows are padded as padded_rows.h says. What stands before the first and behind the
// last cell is looked at only where it says so; kernels write there.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "simd/pixels/midpoint_rows.h"

namespace simd {

// Means, rounded down, of midpoints and contrasts over the pixels of each block whose contrast is
// not 0; 0 for blocks without such pixels. edges[i] is not 0 where word i of 64
// pixels has a contrast in any of the four rows.
void edge_means(const FourRows& midpoints, const FourRows& contrasts, const std::uint64_t* edges,
                std::size_t words, std::uint8_t* midpoint_means, std::uint8_t* contrast_means);

// Means, rounded down, of all 16 pixels of each block.
void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means);

// Cells 1 .. width - 2 that are 0 become the mean, rounded down, of those of their 8 neighbours
// that are not 0; all others are copied.
void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// Cells 1 .. width - 2 that are not 0 become the mean, rounded down, of the cells around and at
// them that are not 0 where these are at least 3; all others become 0.
void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// Midway, rounded down, between the least and the greatest of the nine cells around and at each,
// where they differ by more than `limit`, else 0. The cells before the first and behind the last
// one are read.
void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit, std::uint8_t* out);

namespace plain {

inline void edge_means(const FourRows& midpoints, const FourRows& contrasts, const std::uint64_t*,
                       std::size_t words, std::uint8_t* midpoint_means,
                       std::uint8_t* contrast_means) {
    for (std::size_t block = 0; block < 16 * words; ++block) {
        unsigned midpoint = 0;
        unsigned contrast = 0;
        unsigned pixels = 0;
        for (std::size_t at = 0; at < 16; ++at) {
            const std::size_t x = 4 * block + at % 4;
            if (contrasts.row[at / 4][x] == 0) continue;
            midpoint += midpoints.row[at / 4][x];
            contrast += contrasts.row[at / 4][x];
            ++pixels;
        }
        midpoint_means[block] = static_cast<std::uint8_t>(midpoint / std::max(pixels, 1U));
        contrast_means[block] = static_cast<std::uint8_t>(contrast / std::max(pixels, 1U));
    }
}

inline void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means) {
    for (std::size_t block = 0; block < 16 * words; ++block) {
        unsigned sum = 0;
        for (std::size_t at = 0; at < 16; ++at) sum += grey.row[at / 4][4 * block + at % 4];
        means[block] = static_cast<std::uint8_t>(sum / 16);
    }
}

inline void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    std::copy_n(map.row, width, out);
    for (std::size_t x = 1; x + 1 < width; ++x) {
        if (map.row[x] == 0) {
            out[x] =
                static_cast<std::uint8_t>(mean_of_neighbours(map, static_cast<std::ptrdiff_t>(x)));
        }
    }
}

inline void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    std::fill_n(out, width, std::uint8_t{0});
    for (std::size_t x = 1; x + 1 < width; ++x) {
        if (map.row[x] == 0) continue;
        int sum = 0;
        int count = 0;
        for (const std::uint8_t* row : {map.above, map.row, map.below}) {
            for (std::size_t at = x - 1; at <= x + 1; ++at) {
                sum += row[at];
                count += row[at] != 0 ? 1 : 0;
            }
        }
        if (count >= 3) out[x] = static_cast<std::uint8_t>(sum / count);
    }
}

inline void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit,
                         std::uint8_t* out) {
    for (std::ptrdiff_t x = 0; x < static_cast<std::ptrdiff_t>(width); ++x) {
        int least = 255;
        int most = 0;
        for (const std::uint8_t* row : {map.above, map.row, map.below}) {
            for (std::ptrdiff_t at = x - 1; at <= x + 1; ++at) {
                least = std::min<int>(least, row[at]);
                most = std::max<int>(most, row[at]);
            }
        }
        out[x] = static_cast<std::uint8_t>(most - least > limit ? (most + least) >> 1 : 0);
    }
}

}  // namespace plain
}  // namespace simd
