// Plain forms of midpoint_rows.h.
#pragma once

#include <algorithm>

#include "simd/pixels/midpoint_rows.h"
#include "simd/single_bits.h"

namespace simd::plain {

struct Extremes {
    std::uint8_t least;
    std::uint8_t greatest;
};

// Of the nine bytes around and at x.
inline Extremes extremes_around(const ThreeRows& rows, std::size_t x) {
    const std::uint8_t *const a = rows.above + x, *const b = rows.row + x,
                              *const c = rows.below + x;
    const auto [least, greatest] =
        std::minmax({a[-1], a[0], a[1], b[-1], b[0], b[1], c[-1], c[0], c[1]});
    return {least, greatest};
}

// The mean of those of the 8 neighbours of x that are not 0, rounded down; 0 where all of them are.
inline std::uint8_t mean_of_neighbours(const ThreeRows& rows, std::size_t x) {
    const std::uint8_t *const a = rows.above + x, *const b = rows.row + x,
                              *const c = rows.below + x;
    int sum = 0;
    int count = 0;
    for (const std::uint8_t value : {a[-1], a[0], a[1], b[-1], b[1], c[-1], c[0], c[1]}) {
        sum += value;
        count += value != 0 ? 1 : 0;
    }
    return static_cast<std::uint8_t>(sum / std::max(count, 1));
}

inline bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                         std::uint8_t* midpoint, std::uint8_t* contrast) {
    bool hidden = false;
    for (std::size_t x = 0; x < 64 * words; ++x) {
        midpoint[x] = contrast[x] = 0;
        if (!marked(edges, x)) continue;
        const auto [least, greatest] = extremes_around(grey, x);
        midpoint[x] = static_cast<std::uint8_t>((least + greatest) / 2);
        contrast[x] = static_cast<std::uint8_t>(greatest - least);
        hidden |= midpoint[x] == 0 && contrast[x] != 0;
    }
    return hidden;
}

inline void mark_below_midpoints(const ThreeRows& midpoints, const ThreeBitRows& /*edges*/,
                                 const std::uint8_t* grey, std::size_t width,
                                 std::uint64_t* marks) {
    std::fill_n(marks, (width + 63) / 64, 0);
    for (std::size_t x = 1; x + 1 < width; ++x) {
        const std::uint8_t own = midpoints.row[x];
        if (grey[x] < (own != 0 ? own : mean_of_neighbours(midpoints, x))) mark(marks, x);
    }
}

}  // namespace simd::plain
