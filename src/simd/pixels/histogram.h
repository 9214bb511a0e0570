// How often each of the 256 grey levels occurs among bytes. plain/histogram.h is the plain form.
//
// Use: Histogram histogram{}; add_to_histogram(pixels, count, histogram) adds to it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simd {

using Histogram = std::array<std::uint64_t, 256>;

// counts[v] += the number of those of the `count` bytes that are v.
void add_to_histogram(const std::uint8_t* pixels, std::size_t count, Histogram& counts);

}  // namespace simd
