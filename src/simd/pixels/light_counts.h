// How many bytes reach each of eight neighbouring levels, and the least byte: what the white level
// of a page is read from, at a fraction of the work of a histogram. plain/light_counts.h is the
// plain form.
//
// Use: LightCounts counts; count_light(grey, first_level, counts) adds to it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "common/views.h"

namespace simd {

constexpr int kLightLevels = 8;

struct LightCounts {
    std::array<std::uint64_t, kLightLevels> at_least{};
    std::uint8_t least = 255;
};

// at_least[k] += the number of pixels that are first_level + k or more; least = the least pixel so
// far. Only the pixels of the view are read.
// first_level is 1 .. 256 - kLightLevels.
void count_light(const common::GreyView& grey, std::uint8_t first_level, LightCounts& counts);

}  // namespace simd
