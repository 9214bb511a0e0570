// Random pages for tests.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "support/guarded_buffer.h"

namespace support {

// Deterministic: the same seed gives the same bytes on every machine.
class Random {
  public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}

    // Uniform in low .. high, both ends included. (Not std::uniform_int_distribution, whose values
    // differ between standard libraries.)
    int between(int low, int high) {
        return low + static_cast<int>(engine_() % static_cast<std::uint32_t>(high - low + 1));
    }
    std::uint8_t byte() { return static_cast<std::uint8_t>(engine_()); }
    bool chance(double probability) {
        return static_cast<double>(engine_()) < probability * 4294967296.0;
    }

  private:
    std::mt19937 engine_;
};

// Noise: every byte random, padding included.
inline std::vector<std::uint8_t> random_bytes(std::size_t count, std::uint32_t seed) {
    Random random(seed);
    std::vector<std::uint8_t> bytes(count);
    for (auto& value : bytes) value = random.byte();
    return bytes;
}

// A bitonal page of `density` random ink with dirty padding.
inline std::vector<std::uint8_t> random_bitonal(int height, std::size_t stride, double density,
                                                std::uint32_t seed) {
    Random random(seed);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(height) * stride);
    for (auto& value : bytes) {
        unsigned bits = 0;
        for (int bit = 0; bit < 8; ++bit) bits = bits << 1 | (random.chance(density) ? 1U : 0U);
        value = static_cast<std::uint8_t>(bits);
    }
    return bytes;
}

// Blobs like letters in lines, with dirty padding: filled boxes and strokes rather than noise.
inline std::vector<std::uint8_t> random_text(int height, int width, std::size_t stride,
                                             std::uint32_t seed) {
    Random random(seed);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(height) * stride);
    const auto ink = [&](int x, int y) {
        bytes[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x / 8)] |=
            static_cast<std::uint8_t>(0x80 >> (x % 8));
    };
    for (int y = 0; y < height; ++y)
        for (int x = width; x < static_cast<int>(stride * 8); ++x)
            if (random.chance(0.5)) ink(x, y);
    const int strokes = height * width / 200 + 1;
    for (int stroke = 0; stroke < strokes; ++stroke) {
        const int x0 = random.between(0, width - 1);
        const int y0 = random.between(0, height - 1);
        const int w = random.chance(0.02) ? random.between(1, width) : random.between(1, 12);
        const int h = random.chance(0.02) ? random.between(1, height) : random.between(1, 6);
        for (int y = y0; y < std::min(height, y0 + h); ++y)
            for (int x = x0; x < std::min(width, x0 + w); ++x) ink(x, y);
    }
    return bytes;
}

}  // namespace support
