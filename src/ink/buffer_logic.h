// Whole bitonal buffers combined byte by byte, their ink counted, and spans of a row painted.
//
// The buffers have rows * stride bytes and the same geometry; padding bits take part. All but the
// count are fixed to return a status, which is always 0. Nothing calls or_buffers() and
// xor_buffers() yet.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ink {

// Each byte of `dst` becomes the low eight bits of combine(it, the byte of `src`).
template <class Combine>
void combine_bytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t count, Combine combine) {
    for (std::size_t i = 0; i < count; ++i) {
        dst[i] = static_cast<std::uint8_t>(combine(dst[i], src[i]));
    }
}

std::int32_t and_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                         std::int32_t stride);
std::int32_t and_not_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                             std::int32_t stride);  // dst AND NOT src
std::int32_t or_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                        std::int32_t stride);
std::int32_t xor_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                         std::int32_t stride);

// The number of 1-bits.
std::int64_t count_black_pixels(const std::uint8_t* buffer, std::int32_t rows, std::int32_t stride);

// Sets `length` pixels from pixel `x` (>= 0) on to 1 if `value` is 1, to 0 otherwise. A length
// below 1 paints nothing. Only the bytes of the span are touched. component_shear.cpp, whose rows
// are 32-bit words, paints by words: with this function, finding the skew of a page of text and
// straightening it takes 1.25 times as long.
std::int32_t paint_span(std::uint8_t* row, std::int32_t x, std::int32_t length, int value);

}  // namespace ink
