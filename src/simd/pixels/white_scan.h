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

namespace plain {

inline std::size_t first_not_white(const std::uint8_t* bytes, std::size_t count) {
    std::size_t i = 0;
    while (i < count && bytes[i] == 255) ++i;
    return i;
}

inline std::size_t last_not_white(const std::uint8_t* bytes, std::size_t count) {
    std::size_t i = count;
    while (i > 0 && bytes[i - 1] == 255) --i;
    return i > 0 ? i - 1 : count;
}

inline bool take_not_white(const std::uint8_t* row, std::size_t width, std::size_t pixel_bytes,
                           std::uint64_t* pending, PixelSums& sums) {
    bool left = false;
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint64_t bit = std::uint64_t{1} << (x % 64);
        if ((pending[x / 64] & bit) == 0) continue;
        const std::uint8_t* const pixel = row + x * pixel_bytes;
        if (first_not_white(pixel, pixel_bytes) == pixel_bytes) {
            left = true;
            continue;
        }
        sums.add(pixel, pixel_bytes);
        pending[x / 64] &= ~bit;
    }
    return left;
}

inline void replace_bytes(std::uint8_t* bytes, std::size_t count, std::uint8_t from,
                          std::uint8_t to) {
    for (std::size_t i = 0; i < count; ++i) {
        if (bytes[i] == from) bytes[i] = to;
    }
}

inline void replace_triples(std::uint8_t* triples, std::size_t count, const std::uint8_t* from,
                            const std::uint8_t* to) {
    for (std::size_t i = 0; i < 3 * count; i += 3) {
        if (triples[i] != from[i] || triples[i + 1] != from[i + 1] ||
            triples[i + 2] != from[i + 2]) {
            continue;
        }
        for (std::size_t c = i; c < i + 3; ++c) triples[c] = to[c];
    }
}

}  // namespace plain
}  // namespace simd
