// Plain form of count_bits.h.
#pragma once

#include <bit>

#include "simd/bits/count_bits.h"

namespace simd::plain {

inline std::int64_t count_bits(const std::uint8_t* bytes, std::size_t size) {
    std::int64_t count = 0;
    for (std::size_t i = 0; i < size; ++i) count += std::popcount(bytes[i]);
    return count;
}

}  // namespace simd::plain
