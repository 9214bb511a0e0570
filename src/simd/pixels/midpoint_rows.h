// Rows of the step from edges to thresholds: the grey midway across each edge pixel, and the pixels
// near edges that are darker than it. plain/midpoint_rows.h says what each function computes.
//
// Use: midpoint_row() for rows y - 1, y and y + 1, then mark_below_midpoints() for row y.
//
// Keep true: rows of bytes are padded as padded_rows.h says. Rows of bits are full words of 64
// pixels, pixel 0 in the least significant bit of the first one; bits behind the last pixel are 0.
// The first and the last pixel of a row are no edges.
#pragma once

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

// Writes for each edge pixel the mean, rounded down, of the least and the greatest of the nine
// greys around and at it, and the difference between the two; 0 and 0 for all other pixels of the
// `words` words. Returns whether an edge pixel with a difference has the midpoint 0, which cannot
// be told from none.
bool midpoint_row(const ThreeRows& grey, const std::uint64_t* edges, std::size_t words,
                  std::uint8_t* midpoint, std::uint8_t* contrast);

// Sets bit x of `marks` where grey[x] is below the threshold of pixel x: its midpoint or, where
// that is 0, the mean, rounded down, of those of its 8 neighbours that are not 0. The first and the
// last pixel get no mark; ceil(width / 64) words are written. Pixels that are no edges have the
// midpoint 0.
void mark_below_midpoints(const ThreeRows& midpoints, const ThreeBitRows& edges,
                          const std::uint8_t* grey, std::size_t width, std::uint64_t* marks);

}  // namespace simd
