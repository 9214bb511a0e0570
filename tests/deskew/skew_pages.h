// Pages for the skew tests: lines of letters that rise by a known slope, and plain noise.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "support/random_page.h"

namespace support {

struct SkewPage {
    int height;
    int width;
    int stride;
    std::vector<std::uint8_t> bytes;
};

inline void set_ink(SkewPage& page, int x, int y) {
    if (x < 0 || y < 0 || x >= page.width || y >= page.height) return;
    const std::size_t byte = static_cast<std::size_t>(y) * static_cast<std::size_t>(page.stride) +
                             static_cast<std::size_t>(x / 8);
    page.bytes[byte] = static_cast<std::uint8_t>(page.bytes[byte] | (0x80 >> (x % 8)));
}

// Ink everywhere beyond the width: none of it may count.
inline void soil_padding(SkewPage& page) {
    for (int y = 0; y < page.height; ++y)
        for (int x = page.width; x < page.stride * 8; ++x) {
            const std::size_t byte =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(page.stride) +
                static_cast<std::size_t>(x / 8);
            page.bytes[byte] = static_cast<std::uint8_t>(page.bytes[byte] | (0x80 >> (x % 8)));
        }
}

// Lines of letter-like stems and bars, turned so that they rise by `rise` pixels in 512.
inline SkewPage turned_text(int height, int width, int stride, int rise, std::uint32_t seed) {
    SkewPage page{height, width, stride,
                  std::vector<std::uint8_t>(static_cast<std::size_t>(height) *
                                            static_cast<std::size_t>(stride))};
    Random random(seed);
    const double slope = rise / 512.0;
    const auto box = [&](int left, int top, int w, int h) {
        for (int v = top; v < top + h; ++v)
            for (int u = left; u < left + w; ++u)
                set_ink(page, static_cast<int>(std::lround(u + slope * v)),
                        static_cast<int>(std::lround(v - slope * u)));
    };
    for (int top = -height; top < 2 * height; top += 24)
        for (int left = -width / 4; left < width + width / 4; left += 9) {
            if (random.chance(0.15)) continue;
            box(left, top, 2, 12);
            if (random.chance(0.5)) box(left, top + (random.chance(0.5) ? 0 : 10), 6, 2);
            if (random.chance(0.3)) box(left + 5, top, 2, 12);
        }
    soil_padding(page);
    return page;
}

inline SkewPage noise(int height, int width, int stride, double density, std::uint32_t seed) {
    return {height, width, stride,
            random_bitonal(height, static_cast<std::size_t>(stride), density, seed)};
}

}  // namespace support
