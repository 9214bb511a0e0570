// A row of pixels moved to the right into another row. plain/shift_bits.h is the plain form.
//
// Every byte of dst is written: pixels that nothing is moved to become paper, pixels that are moved
// out of dst are dropped. Any number of pixels is allowed, also one beyond either row, and either
// row may be empty.
//
// Keep true: the rows do not overlap. Nothing is read outside of src.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

void shift_right(const std::uint8_t* src, std::size_t src_bytes, unsigned pixels, std::uint8_t* dst,
                 std::size_t dst_bytes);

}  // namespace simd
