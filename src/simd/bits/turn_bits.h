// Turns of bitonal images: the exchange of rows and columns, and the half turn. plain/turn_bits.h
// says what each of them computes.
//
// Use: the strides are signed, so an image is mirrored on the way by handing over its last row and
// a negative stride: that makes the exchange a quarter turn in either direction.
//
// Keep true: source and destination do not overlap. Bits count from the most significant bit of the
// first byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Destination row x, bit y = source row y, bit x, for y < rows and x < columns. Writes `columns`
// rows of 4 * ceil(rows / 32) bytes, bits from `rows` on 0. Reads ceil(columns / 8) bytes of every
// source row.
void transpose_bits(const std::uint8_t* src, std::ptrdiff_t src_stride, std::size_t rows,
                    std::size_t columns, std::uint8_t* dst, std::ptrdiff_t dst_stride);

// Destination row rows - 1 - y, bit columns - 1 - x = source row y, bit x. May read and writes all
// rows * stride bytes, bits from `columns` on 0; stride >= ceil(columns / 8).
void half_turn_bits(const std::uint8_t* src, std::size_t rows, std::size_t columns,
                    std::size_t stride, std::uint8_t* dst);

}  // namespace simd
