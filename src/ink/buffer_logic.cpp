#include "ink/buffer_logic.h"

#include <cstddef>
#include <cstring>

#include "simd/bits/count_bits.h"

namespace ink {
namespace {

std::size_t buffer_size(std::int32_t rows, std::int32_t stride) {
    if (rows <= 0 || stride <= 0) return 0;
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(stride);
}

template <class Combine>
std::int32_t combine_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                             std::int32_t stride, Combine combine) {
    combine_bytes(dst, src, buffer_size(rows, stride), combine);
    return 0;
}

}  // namespace

std::int32_t and_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                         std::int32_t stride) {
    return combine_buffers(dst, src, rows, stride, [](int d, int s) { return d & s; });
}

std::int32_t and_not_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                             std::int32_t stride) {
    return combine_buffers(dst, src, rows, stride, [](int d, int s) { return d & ~s; });
}

std::int32_t or_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                        std::int32_t stride) {
    return combine_buffers(dst, src, rows, stride, [](int d, int s) { return d | s; });
}

std::int32_t xor_buffers(std::uint8_t* dst, const std::uint8_t* src, std::int32_t rows,
                         std::int32_t stride) {
    return combine_buffers(dst, src, rows, stride, [](int d, int s) { return d ^ s; });
}

std::int64_t count_black_pixels(const std::uint8_t* buffer, std::int32_t rows,
                                std::int32_t stride) {
    return simd::count_bits(buffer, buffer_size(rows, stride));
}

std::int32_t paint_span(std::uint8_t* row, std::int32_t x, std::int32_t length, int value) {
    if (length <= 0) return 0;
    const std::int64_t end = std::int64_t{x} + length;
    std::uint8_t* first = row + x / 8;
    std::uint8_t* const last = row + end / 8;
    // Bits of the first byte from x on, and bits of the last byte before the end.
    const unsigned head = 0xFFU >> (x % 8);
    const unsigned tail = ~(0xFFU >> (end % 8)) & 0xFFU;
    const auto paint = [value](std::uint8_t& byte, unsigned mask) {
        byte = static_cast<std::uint8_t>(value == 1 ? byte | mask : byte & ~mask);
    };
    if (first == last) {
        paint(*first, head & tail);
        return 0;
    }
    paint(*first++, head);
    std::memset(first, value == 1 ? 0xFF : 0x00, static_cast<std::size_t>(last - first));
    if (tail != 0) paint(*last, tail);
    return 0;
}

}  // namespace ink
