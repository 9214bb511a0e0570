// Shifts of a row of bits into another row: bits count from the most significant bit of the first
// byte, so a shift to the right moves pixels of a bitonal row to the right.
//
// Use: shift_right(src, src_bytes, 13, dst, dst_bytes). Every byte of dst is written: bits that
// nothing is moved to become 0, bits moved out of dst are dropped. Any count of bits is allowed,
// also one beyond either row; either row may be empty.
//
// Keep true: the rows do not overlap. Nothing is read outside of src.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

void shift_right(const std::uint8_t* src, std::size_t src_bytes, unsigned bits, std::uint8_t* dst,
                 std::size_t dst_bytes);
void shift_left(const std::uint8_t* src, std::size_t src_bytes, unsigned bits, std::uint8_t* dst,
                std::size_t dst_bytes);

}  // namespace simd
