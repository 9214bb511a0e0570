// Rows of the step from edges to thresholds: the grey midway across each edge pixel, and the pixels
// near edges that are darker than it.
//
// Use: midpoint_row() for rows y - 1, y and y + 1, then mark_below_midpoints() for row y.
//
// Keep true: byte rows are padded as padded_rows.h says; bit rows are whole words of 64 pixels,
// pixel 0 in the least significant bit of the first. The first and the last pixel of a row are no
// edges, and bits behind the last pixel are 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "simd/pixels/padded_rows.h"

namespace simd {

// Edge bits of the same three rows.
struct ThreeBitRows {
    const std::uint64_t* above;
    const std::uint64_t* row;
    const std::uint64_t* below;
};

// For each edge pixel the mean of the least and the greatest of the nine greys around and at it,
// rounded down, and the difference between the two; 0 and 0 for all other pixels. Whole words of
// pixels are written. Returns whether an edge pixel with a difference got the midpoint 0, which
// looks like none.
bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                  std::uint8_t* midpoint, std::uint8_t* contrast);

// Bit x of `marks` is set where grey[x] is below the threshold of pixel x: its midpoint, or where
// that is 0 the mean, rounded down, of those of its 8 neighbours that are not 0. Pixels 1 .. width
// - 2; whole words are written. Pixels without an edge have the midpoint 0.
void mark_below_midpoints(const ThreeRows& midpoints, const ThreeBitRows& edges,
                          const std::uint8_t* grey, std::size_t width, std::uint64_t* marks);

namespace plain {

inline bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                         std::uint8_t* midpoint, std::uint8_t* contrast) {
    bool hidden = false;
    for (std::ptrdiff_t x = 0; x < static_cast<std::ptrdiff_t>(words * 64); ++x) {
        midpoint[x] = contrast[x] = 0;
        if ((edges[x / 64] >> (x % 64) & 1) == 0) continue;
        int least = 255;
        int most = 0;
        for (const std::uint8_t* row : {grey.above, grey.row, grey.below}) {
            for (std::ptrdiff_t at = x - 1; at <= x + 1; ++at) {
                least = std::min<int>(least, row[at]);
                most = std::max<int>(most, row[at]);
            }
        }
        midpoint[x] = static_cast<std::uint8_t>((least + most) >> 1);
        contrast[x] = static_cast<std::uint8_t>(most - least);
        hidden |= midpoint[x] == 0 && contrast[x] != 0;
    }
    return hidden;
}

// The mean of the neighbours that are not 0, rounded down; 0 without such neighbours.
inline int mean_of_neighbours(const ThreeRows& rows, std::ptrdiff_t x) {
    int sum = 0;
    int count = 0;
    for (const std::uint8_t* row : {rows.above, rows.row, rows.below}) {
        for (std::ptrdiff_t at = x - 1; at <= x + 1; ++at) {
            if (row == rows.row && at == x) continue;
            sum += row[at];
            count += row[at] != 0 ? 1 : 0;
        }
    }
    return count == 0 ? 0 : sum / count;
}

inline void mark_below_midpoints(const ThreeRows& midpoints, const ThreeBitRows&,
                                 const std::uint8_t* grey, std::size_t width,
                                 std::uint64_t* marks) {
    std::fill_n(marks, (width + 63) / 64, 0);
    for (std::size_t x = 1; x + 1 < width; ++x) {
        const int own = midpoints.row[x];
        const int threshold =
            own != 0 ? own : mean_of_neighbours(midpoints, static_cast<std::ptrdiff_t>(x));
        if (grey[x] < threshold) marks[x / 64] |= std::uint64_t{1} << (x % 64);
    }
}

}  // namespace plain
}  // namespace simd
