// Plain forms of run_edges.h.
#pragma once

#include "simd/bits/run_edges.h"
#include "simd/single_bits.h"

namespace simd::plain {

inline std::int32_t extract_runs(const std::uint8_t* row, std::int32_t x_start, std::int32_t width,
                                 bool invert, std::int32_t* out) {
    std::int32_t written = 0;
    bool inside = false;
    for (std::int32_t x = x_start; x < x_start + width; ++x) {
        const bool ink = pixel(row, static_cast<std::size_t>(x)) != invert;
        if (ink != inside) out[written++] = x;
        inside = ink;
    }
    if (inside) out[written++] = x_start + width;
    return written;
}

inline void count_runs(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                       std::int32_t width, bool invert, std::size_t* offsets) {
    offsets[0] = 0;
    for (std::int32_t y = 0; y < height; ++y) {
        std::size_t runs = 0;
        bool before = false;
        for (std::int32_t x = 0; x < width; ++x) {
            const bool ink = pixel(rows + y * stride, static_cast<std::size_t>(x)) != invert;
            if (ink && !before) ++runs;
            before = ink;
        }
        offsets[y + 1] = offsets[y] + runs;
    }
}

inline void extract_rows(const std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t height,
                         std::int32_t width, bool invert, std::int32_t* out) {
    for (std::int32_t y = 0; y < height; ++y) {
        out += extract_runs(rows + y * stride, 0, width, invert, out);
    }
}

}  // namespace simd::plain
