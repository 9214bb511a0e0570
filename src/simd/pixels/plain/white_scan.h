// Plain forms of white_scan.h.
#pragma once

#include "simd/pixels/white_scan.h"

namespace simd::plain {

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

}  // namespace simd::plain
