// How many bytes reach each of eight neighbouring levels, and the least byte: what the white level
// of a page is read from, at a fraction of the work of counting every level.
//
// Use: LightCounts counts; count_light(pixels, count, first_level, counts) adds to it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace simd {

constexpr int kLightLevels = 8;

struct LightCounts {
    std::array<std::uint64_t, kLightLevels> at_least{};
    std::uint8_t least = 255;
};

// at_least[k] += number of bytes that are first_level + k or more; least = the least byte so far.
// first_level is at most 256 - kLightLevels.
void count_light(const std::uint8_t* pixels, std::size_t count, std::uint8_t first_level,
                 LightCounts& counts);

namespace plain {

inline void count_light(const std::uint8_t* pixels, std::size_t count, std::uint8_t first_level,
                        LightCounts& counts) {
    for (std::size_t i = 0; i < count; ++i) {
        counts.least = std::min(counts.least, pixels[i]);
        for (int k = 0; k < kLightLevels; ++k) {
            if (pixels[i] >= first_level + k) ++counts.at_least[static_cast<std::size_t>(k)];
        }
    }
}

}  // namespace plain
}  // namespace simd
