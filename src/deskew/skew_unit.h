// The unit that skews are measured in, and the size of a page after the bitonal deskew rotation.
//
// A skew s is a drift of s pixels over kSkewScale pixels: positive when text lines rise to the
// right. Use: skew_units() for a skew that a caller gives, deskewed_size(height, width, s) for what
// the estimator reports and the rotation needs.
//
// Keep true: |s| <= kMaxSkew. Sizes are 64-bit, so that a page near the limit of 32-bit sizes gives
// a true result that the caller can refuse.
#pragma once

#include <cstdint>
#include <stdexcept>

#include "common/views.h"

namespace deskew {

constexpr int kSkewScale = 512;
constexpr int kMaxSkew = 96;  // about 10.6 degrees

// A skew as a caller gives it: a drift of `numerator` pixels over `denominator` pixels.
struct Skew {
    int numerator = 0;
    int denominator = kSkewScale;
};

// Rounded toward zero. No drift is no skew over any length. Throws std::out_of_range for a drift
// over nothing and beyond kMaxSkew.
inline int skew_units(Skew skew) {
    if (skew.numerator == 0) return 0;
    if (skew.denominator == 0) throw std::out_of_range("a skew over nothing");
    const std::int64_t units = std::int64_t{skew.numerator} * kSkewScale / skew.denominator;
    if (units < -kMaxSkew || units > kMaxSkew) throw std::out_of_range("too steep a skew");
    return static_cast<int>(units);
}

struct Size {
    std::int64_t height = 0;  // rows
    std::int64_t width = 0;   // pixels

    friend bool operator==(const Size&, const Size&) = default;
};

// Pixels that `length` pixels drift sideways or up under the skew, rounded toward zero; signed as
// the skew.
constexpr std::int64_t skew_drift(std::int64_t length, int yskew) {
    return length * yskew / kSkewScale;
}

// Size of a height x width page after its rows have been sheared sideways and then its columns, a
// byte of 8 pixels at a time over the whole 32-bit words of the widened rows, up or down. A skew of
// 0 keeps the size.
constexpr Size deskewed_size(std::int64_t height, std::int64_t width, int yskew) {
    const auto magnitude = [](std::int64_t value) { return value < 0 ? -value : value; };
    const std::int64_t new_width = width + magnitude(skew_drift(height, yskew));
    const std::int64_t columns = 8 * common::bitonal_stride(new_width);
    return {height + magnitude(skew_drift(columns, yskew)), new_width};
}

static_assert(deskewed_size(1000, 2000, 20) == Size{1080, 2039});
static_assert(deskewed_size(1000, 2000, -20) == Size{1080, 2039});
static_assert(deskewed_size(77, 33, 0) == Size{77, 33});

}  // namespace deskew
