// Rows of grey or colour pixels scanned for what is not white, and pixels repainted. White is 255
// in every byte. plain/white_scan.h says what each function computes. Nothing is read or written
// beyond the pixels.
#pragma once

#include <cstddef>
#include <cstdint>

namespace simd {

// The index of the first, or last, byte that is not 255; `count` if there is none.
std::size_t first_not_white(const std::uint8_t* bytes, std::size_t count);
std::size_t last_not_white(const std::uint8_t* bytes, std::size_t count);

// The sum of some pixels, for each byte of a pixel, and their number.
struct PixelSums {
    std::uint64_t bytes[3] = {};
    std::uint64_t count = 0;

    void add(const std::uint8_t* pixel, std::size_t pixel_bytes) {
        for (std::size_t i = 0; i < pixel_bytes; ++i) bytes[i] += pixel[i];
        ++count;
    }
};

// Adds those of the pixels whose bit in `pending` is set that are not white, and clears their bits.
// Returns whether any bit is left. Pixel x has bit x % 64, counted from the least significant one,
// of word x / 64; bits behind the last pixel are 0. A pixel has 1 or 3 bytes.
bool take_not_white(const std::uint8_t* row, std::size_t width, std::size_t pixel_bytes,
                    std::uint64_t* pending, PixelSums& sums);

// Every byte that is `from` becomes `to`.
void replace_bytes(std::uint8_t* bytes, std::size_t count, std::uint8_t from, std::uint8_t to);

// Every triple that equals the one of `from` at the same place becomes the one of `to` there.
void replace_triples(std::uint8_t* triples, std::size_t count, const std::uint8_t* from,
                     const std::uint8_t* to);

}  // namespace simd
