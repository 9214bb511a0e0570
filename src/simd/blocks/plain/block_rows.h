// Plain forms of block_rows.h.
#pragma once

#include <algorithm>

#include "simd/blocks/block_rows.h"
#include "simd/pixels/plain/midpoint_rows.h"

namespace simd::plain {

inline void edge_means(const FourRows& midpoints, const FourRows& contrasts,
                       const std::uint64_t* /*edges*/, std::size_t words,
                       std::uint8_t* midpoint_means, std::uint8_t* contrast_means) {
    for (std::size_t block = 0; block < 16 * words; ++block) {
        unsigned midpoint = 0;
        unsigned contrast = 0;
        unsigned pixels = 0;
        for (std::size_t i = 0; i < 16; ++i) {
            const std::size_t x = 4 * block + i % 4;
            if (contrasts.row[i / 4][x] == 0) continue;
            midpoint += midpoints.row[i / 4][x];
            contrast += contrasts.row[i / 4][x];
            ++pixels;
        }
        midpoint_means[block] = static_cast<std::uint8_t>(midpoint / std::max(pixels, 1U));
        contrast_means[block] = static_cast<std::uint8_t>(contrast / std::max(pixels, 1U));
    }
}

inline void grey_means(const FourRows& grey, std::size_t words, std::uint8_t* means) {
    for (std::size_t block = 0; block < 16 * words; ++block) {
        unsigned sum = 0;
        for (std::size_t i = 0; i < 16; ++i) sum += grey.row[i / 4][4 * block + i % 4];
        means[block] = static_cast<std::uint8_t>(sum / 16);
    }
}

inline void fill_empty_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x) {
        const bool inner = x > 0 && x + 1 < width;
        out[x] = inner && map.row[x] == 0 ? mean_of_neighbours(map, x) : map.row[x];
    }
}

inline void average_filled_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    std::fill_n(out, width, std::uint8_t{0});
    for (std::size_t x = 1; x + 1 < width; ++x) {
        int sum = 0;
        int count = 0;
        for (const std::uint8_t* row : {map.above + x, map.row + x, map.below + x}) {
            for (const std::uint8_t value : {row[-1], row[0], row[1]}) {
                sum += value;
                count += value != 0 ? 1 : 0;
            }
        }
        if (map.row[x] != 0 && count >= 3) out[x] = static_cast<std::uint8_t>(sum / count);
    }
}

inline void midrange_row(const ThreeRows& map, std::size_t width, std::uint8_t limit,
                         std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x) {
        const auto [least, greatest] = extremes_around(map, x);
        out[x] = static_cast<std::uint8_t>(greatest - least > limit ? (least + greatest) / 2 : 0);
    }
}

}  // namespace simd::plain
