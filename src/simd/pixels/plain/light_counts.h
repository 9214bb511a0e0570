// Plain forms of light_counts.h.
#pragma once

#include <algorithm>

#include "simd/pixels/light_counts.h"

namespace simd::plain {

inline void count_light(const common::GreyView& grey, std::uint8_t first_level,
                        LightCounts& counts) {
    for (std::ptrdiff_t y = 0; y < grey.height; ++y) {
        for (std::ptrdiff_t x = 0; x < grey.width; ++x) {
            const std::uint8_t pixel = grey.row(y)[x];
            counts.least = std::min(counts.least, pixel);
            for (int k = 0; k < kLightLevels; ++k) {
                if (pixel >= first_level + k) ++counts.at_least[static_cast<std::size_t>(k)];
            }
        }
    }
}

}  // namespace simd::plain
