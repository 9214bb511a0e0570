// Rows of a map of block thresholds on the way from a map with empty (0) cells to a full one.
//
// Use: widen_into_empty() once for every inner row, then, over cells that stayed empty and were set
// to 255, pull_forward() for the rows from top to bottom and pull_backward() from bottom to top.
//
// Keep true: output rows do not overlap inputs, except that the neighbouring row of a pull may be
// the row itself, where the map has none.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace simd {

// out = row, but every empty cell that is not the first or the last one takes the largest value of
// the 3 x 3 cells around it. Cells empty even then are 255 in `out` and 0xFF in `was_empty`, the
// others 0 there.
void widen_into_empty(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                      std::size_t width, std::uint8_t* out, std::uint8_t* was_empty);

// From left to right, every cell that was empty takes the least of itself and its left, upper and
// upper left neighbours.
void pull_forward(const std::uint8_t* above, const std::uint8_t* was_empty, std::size_t width,
                  std::uint8_t* row);

// From right to left the same with the right, lower and lower right neighbours.
void pull_backward(const std::uint8_t* below, const std::uint8_t* was_empty, std::size_t width,
                   std::uint8_t* row);

namespace plain {

inline void mark_empty(const std::uint8_t* row, std::size_t width, std::uint8_t* out,
                       std::uint8_t* was_empty) {
    for (std::size_t x = 0; x < width; ++x) {
        was_empty[x] = row[x] == 0 ? 0xFF : 0;
        out[x] = row[x] | was_empty[x];
    }
}

inline std::uint8_t widened(const std::uint8_t* above, const std::uint8_t* row,
                            const std::uint8_t* below) {
    if (row[0] != 0) return row[0];
    return std::max(
        {above[-1], above[0], above[1], row[-1], row[1], below[-1], below[0], below[1]});
}

inline void widen_into_empty(const std::uint8_t* above, const std::uint8_t* row,
                             const std::uint8_t* below, std::size_t width, std::uint8_t* out,
                             std::uint8_t* was_empty) {
    for (std::size_t x = 0; x < width; ++x) {
        const bool end = x == 0 || x + 1 == width;
        out[x] = end ? row[x] : widened(above + x, row + x, below + x);
    }
    mark_empty(out, width, out, was_empty);
}

// Cells begin .. end - 1.
inline void pull_forward(const std::uint8_t* above, const std::uint8_t* was_empty,
                         std::size_t begin, std::size_t end, std::uint8_t* row) {
    for (std::size_t x = begin; x < end; ++x) {
        if (was_empty[x] == 0) continue;
        row[x] = std::min(row[x], above[x]);
        if (x > 0) row[x] = std::min({row[x], row[x - 1], above[x - 1]});
    }
}

inline void pull_backward(const std::uint8_t* below, const std::uint8_t* was_empty,
                          std::size_t begin, std::size_t end, std::size_t width,
                          std::uint8_t* row) {
    for (std::size_t x = end; x-- > begin;) {
        if (was_empty[x] == 0) continue;
        row[x] = std::min(row[x], below[x]);
        if (x + 1 < width) row[x] = std::min({row[x], row[x + 1], below[x + 1]});
    }
}

}  // namespace plain
}  // namespace simd
