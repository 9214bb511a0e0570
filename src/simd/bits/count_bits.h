// The number of 1-bits in `size` bytes. plain/count_bits.h is the plain form.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

std::int64_t count_bits(const std::uint8_t* bytes, std::size_t size);

}  // namespace simd
