// Rows of bytes with padding, for kernels that look at three rows of pixels or of blocks at once.
//
// Keep true: every row has kRowPad readable and writable bytes before its first byte, and kRowPad
// behind its last one, counted from the next multiple of 64. Kernels work on full vectors, and
// read and write there; a value that stands there has an effect only where a kernel says so.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

constexpr std::size_t kRowPad = 64;

// A row between its neighbours.
struct ThreeRows {
    const std::uint8_t* above;
    const std::uint8_t* row;
    const std::uint8_t* below;
};

// The four rows of pixels that make up a row of blocks.
struct FourRows {
    const std::uint8_t* row[4];
};

}  // namespace simd
