// How often each of the 256 levels occurs among bytes.
//
// Use: LevelCounts counts{}; count_levels(pixels, count, counts) adds to it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simd {

using LevelCounts = std::array<std::uint64_t, 256>;

// counts[v] += number of the `count` bytes that equal v.
void count_levels(const std::uint8_t* pixels, std::size_t count, LevelCounts& counts);

namespace plain {

inline void count_levels(const std::uint8_t* pixels, std::size_t count, LevelCounts& counts) {
    for (std::size_t i = 0; i < count; ++i) ++counts[pixels[i]];
}

}  // namespace plain
}  // namespace simd
