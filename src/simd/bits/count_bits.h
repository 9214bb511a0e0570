// The number of 1-bits of a block of bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

std::int64_t count_bits(const std::uint8_t* bytes, std::size_t size);

namespace plain {

std::int64_t count_bits(const std::uint8_t* bytes, std::size_t size);

}  // namespace plain

}  // namespace simd
