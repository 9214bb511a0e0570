// Rows of grey or colour pixels scanned for what is not white, and pixels repainted. White is 255
// in every byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// Index of the first, or last, byte that is not 255; `count` if there is none.
std::size_t first_not_white(const std::uint8_t* bytes, std::size_t count);
std::size_t last_not_white(const std::uint8_t* bytes, std::size_t count);

// Sums of pixels, per byte of a pixel.
struct PixelSums {
    std::uint64_t bytes[3] = {};
    std::uint64_t count = 0;

    void add(const std::uint8_t* pixel, std::size_t pixel_bytes) {
        for (std::size_t i = 0; i < pixel_bytes; ++i) bytes[i] += pixel[i];
        ++count;
    }
};

// Adds the pixels that are not white and whose bit in `pending` is set, and clears those bits:
// pixel x has bit x % 64, counted from the least significant, of word x / 64. Returns whether any
// bit is left. Bits beyond the width are 0. A pixel has 1 or 3 bytes.
bool take_not_white(const std::uint8_t* row, std::size_t width, std::size_t pixel_bytes,
                    std::uint64_t* pending, PixelSums& sums);

// Sets the bytes that are `from` to `to`.
void replace_bytes(std::uint8_t* bytes, std::size_t count, std::uint8_t from, std::uint8_t to);

// Sets the triples that are equal to that of `from` at the same place to that of `to`.
void replace_triples(std::uint8_t* triples, std::size_t count, const std::uint8_t* from,
                     const std::uint8_t* to);

}  // namespace simd
