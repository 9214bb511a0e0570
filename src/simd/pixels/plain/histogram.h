// Plain forms of histogram.h.
#pragma once

#include "simd/pixels/histogram.h"

namespace simd::plain {

inline void add_to_histogram(const std::uint8_t* pixels, std::size_t count, Histogram& counts) {
    for (std::size_t i = 0; i < count; ++i) ++counts[pixels[i]];
}

}  // namespace simd::plain
