// Small pages that are hard on component labelling: noise, text, and ink that winds.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "models/pixels.h"
#include "support/random_page.h"

namespace pages {

using Bytes = std::vector<std::uint8_t>;

struct Page {
    int height;
    int width;
    int stride;
    Bytes bytes;
};

// Ink where `ink` says so, random padding.
inline Page drawn(int height, int width, int stride, std::uint32_t seed,
                  const std::function<bool(int x, int y)>& ink) {
    Page page{height, width, stride,
              support::random_bytes(static_cast<std::size_t>(height * stride), seed)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) model::set_bit(page.bytes.data(), stride, x, y, ink(x, y));
    return page;
}

// A spiral: rings around the centre, each with a step to the next.
inline bool on_spiral(int x, int y, int size) {
    const int ring = std::min(std::min(x, y), std::min(size - 1 - x, size - 1 - y));
    const bool step = x == ring && y == ring + 1 && ring % 2 == 0;
    return ring % 2 == 0 ? !step || ring == 0 : x == ring && y == ring + 1;
}

constexpr int kKinds = 12;

inline Page hard_page(int kind, int height, int width, int stride, std::uint32_t seed) {
    const auto bytes = static_cast<std::size_t>(stride);
    constexpr double kDensities[] = {0.02, 0.1, 0.25, 0.4, 0.5, 0.65, 0.9};
    if (kind < 7) {
        return {height, width, stride,
                support::random_bitonal(height, bytes, kDensities[kind], seed)};
    }
    switch (kind) {
        case 7:
            return {height, width, stride, support::random_text(height, width, bytes, seed)};
        case 8:  // rows, broken
            return drawn(height, width, stride, seed,
                         [=](int x, int y) { return y % 2 == 0 && (x + y) % 29 != 0; });
        case 9:  // combs, open above and below
            return drawn(height, width, stride, seed, [=](int x, int y) {
                return y % 9 == 8 ? x % 41 != 40 : x % 2 == 0 && y % 9 != 0;
            });
        case 10:
            return drawn(height, width, stride, seed, [=](int x, int y) {
                return on_spiral(x % 23, y % 23, 21) && x % 23 < 21 && y % 23 < 21;
            });
        default:  // dots and pairs around letters
            return drawn(height, width, stride, seed, [=](int x, int y) {
                const bool letter = x % 32 < 9 && y % 24 < 12;
                return letter || (x * 7 + y * 5) % 61 == 0 || (x * 3 + y * 11) % 97 < 2;
            });
    }
}

}  // namespace pages
