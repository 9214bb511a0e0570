// How often each of the 256 levels occurs among bytes.
//
// Use: Histogram counts{}; add_to_histogram(pixels, count, counts) adds to it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simd {

using Histogram = std::array<std::uint64_t, 256>;

// counts[v] += number of the `count` bytes that equal v.
void add_to_histogram(const std::uint8_t* pixels, std::size_t count, Histogram& counts);

}  // namespace simd
