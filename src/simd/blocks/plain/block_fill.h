// Plain forms of block_fill.h.
#pragma once

#include <algorithm>

#include "simd/blocks/block_fill.h"

namespace simd::plain {

// The largest of the nine cells where the middle one is empty, which is 0.
inline std::uint8_t dilated(const std::uint8_t* above, const std::uint8_t* row,
                            const std::uint8_t* below) {
    if (row[0] != 0) return row[0];
    return std::max(
        {above[-1], above[0], above[1], row[-1], row[1], below[-1], below[0], below[1]});
}

inline void dilate_into_empty(const std::uint8_t* above, const std::uint8_t* row,
                              const std::uint8_t* below, std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x) {
        const bool end = x == 0 || x + 1 == width;
        out[x] = end ? row[x] : dilated(above + x, row + x, below + x);
    }
}

inline void propagate_forward(const std::uint8_t* cells, const std::uint8_t* above,
                              std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x) {
        out[x] = cells[x] != 0 ? cells[x] : above[x];
        if (cells[x] == 0 && x > 0) out[x] = std::min({out[x], out[x - 1], above[x - 1]});
    }
}

inline void propagate_backward(const std::uint8_t* cells, const std::uint8_t* below,
                               std::size_t width, std::uint8_t* out) {
    for (std::size_t x = width; x-- > 0;) {
        if (cells[x] != 0) continue;
        out[x] = std::min(out[x], below[x]);
        if (x + 1 < width) out[x] = std::min({out[x], out[x + 1], below[x + 1]});
    }
}

}  // namespace simd::plain
