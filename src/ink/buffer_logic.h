// Whole bitonal buffers combined byte by byte, their ink counted, and spans of a row painted.
//
// The buffers hold rows * stride bytes and have the same geometry; padding bits take part. The
// operations return 0.
#pragma once

#include <cstdint>

namespace ink {

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
// below 1 paints nothing.
std::int32_t paint_span(std::uint8_t* row, std::int32_t x, std::int32_t length, int value);

}  // namespace ink
