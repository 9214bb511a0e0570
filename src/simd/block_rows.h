// Rows of maps that hold one threshold byte for every 4 x 4 block of a page; 0 stands for a block
// without a threshold.
//
// Keep true: rows are padded as for gradient_rows.h, and the padding before the first and behind
// the last cell of the map is never looked at.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "simd/midpoint_rows.h"

namespace simd {

// Cells 1 .. width - 2 that are 0 become the mean, rounded down, of those of their 8 neighbours
// that are not 0; all others are copied.
void spread_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// Cells 1 .. width - 2 that are not 0 become the mean, rounded down, of the cells around and at
// them that are not 0 where these are at least 3; all others become 0.
void clean_row(const ThreeRows& map, std::size_t width, std::uint8_t* out);

// filled[x] = map[x], or where that is 0 the least of 255, above[x], above[x - 1] and
// filled[x - 1]. Without a row above, and for the first cell, those that there are.
void fill_forward_row(const std::uint8_t* map, const std::uint8_t* above, std::size_t width,
                      std::uint8_t* filled);

// Where map[x] is 0, filled[x] = the least of filled[x], below[x], below[x + 1] and filled[x + 1],
// from the last cell to the first.
void fill_backward_row(const std::uint8_t* map, const std::uint8_t* below, std::size_t width,
                       std::uint8_t* filled);

namespace plain {

inline void spread_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
    std::copy_n(map.row, width, out);
    for (std::size_t x = 1; x + 1 < width; ++x) {
        if (map.row[x] == 0) {
            out[x] =
                static_cast<std::uint8_t>(mean_of_neighbours(map, static_cast<std::ptrdiff_t>(x)));
        }
    }
}

inline void clean_row(const ThreeRows& map, std::size_t width, std::uint8_t* out) {
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

inline void fill_forward_row(const std::uint8_t* map, const std::uint8_t* above, std::size_t width,
                             std::uint8_t* filled) {
    for (std::size_t x = 0; x < width; ++x) {
        std::uint8_t least = 255;
        if (above != nullptr) least = std::min(least, above[x]);
        if (above != nullptr && x > 0) least = std::min(least, above[x - 1]);
        if (x > 0) least = std::min(least, filled[x - 1]);
        filled[x] = map[x] != 0 ? map[x] : least;
    }
}

inline void fill_backward_row(const std::uint8_t* map, const std::uint8_t* below, std::size_t width,
                              std::uint8_t* filled) {
    for (std::size_t x = width; x-- > 0;) {
        if (map[x] != 0) continue;
        const bool last = x + 1 == width;
        std::uint8_t least = filled[x];
        if (below != nullptr) least = std::min(least, below[x]);
        if (below != nullptr && !last) least = std::min(least, below[x + 1]);
        if (!last) least = std::min(least, filled[x + 1]);
        filled[x] = least;
    }
}

}  // namespace plain
}  // namespace simd
