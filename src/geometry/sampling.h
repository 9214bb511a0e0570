// How target pixels find their values between source pixels: positions along an axis, and linear
// and cubic interpolation in double precision.
//
// Target pixel j of an axis lies at j * (source / target) in the source, without an offset of half
// a pixel: target pixel 0 is source pixel 0. Three ratios are kept exact by whole phases instead.
//
// Keep true: the expressions stay in the written order, since results are fixed to the bit and a
// value near a whole number is cut off on either side of it.
//
// Source of the cubic: R. Keys, Cubic convolution interpolation for digital image processing, IEEE
// Transactions on Acoustics, Speech, and Signal Processing, 1981, with a = -1/2 (Catmull-Rom).
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace geometry {

constexpr std::int32_t clamped(std::int32_t index, std::int32_t size) {
    return std::clamp(index, 0, size - 1);
}

// Between a (t = 0) and b (t = 1), 0 <= t < 1. It is not a + t * (b - a): for some t the sum of
// the two products falls just below a whole number, even where a equals b.
inline std::uint8_t linear(std::uint8_t a, std::uint8_t b, double t) {
    return static_cast<std::uint8_t>((1 - t) * a + t * b);
}

// Between p1 (t = 0) and p2 (t = 1), 0 <= t < 1, with one more neighbour on either side.
inline std::uint8_t cubic(int p0, int p1, int p2, int p3, double t) {
    const int third = -p0 + 3 * p1 - 3 * p2 + p3;
    const int second = 2 * p0 - 5 * p1 + 4 * p2 - p3;
    const int first = p2 - p0;
    const double value = 0.5 * (((third * t + second) * t + first) * t + 2 * p1);
    return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value), 0, 255));
}

// A ratio of target to source with a short cycle of positions.
enum class Ratio { kTwo, kThreeHalves, kFourThirds, kOther };

// The order of the tests counts: small sizes pass several of them. From 2 pixels to 2 is four
// thirds, since the target size of that ratio is rounded down.
constexpr Ratio ratio_of(std::int64_t source, std::int64_t target) {
    if (target == 2 * source) return Ratio::kTwo;
    if (target == 3 * source / 2) return Ratio::kThreeHalves;
    if (target == 4 * source / 3) return Ratio::kFourThirds;
    return Ratio::kOther;
}

// Target pixels in a cycle: `phases` of them cover phases - 1 source pixels, or 1 when there are
// two.
constexpr std::int32_t phases(Ratio ratio) {
    return ratio == Ratio::kTwo ? 2 : ratio == Ratio::kThreeHalves ? 3 : 4;
}

// Where a target pixel lies: `fraction` behind source pixel `index`, 0 <= fraction < 1.
struct Position {
    std::int32_t index;
    double fraction;
};

// For Ratio::kOther.
inline Position position(std::int32_t source, std::int32_t target, std::int32_t j) {
    const double at = j * (static_cast<double>(source) / target);
    const double index = std::floor(at);
    return {static_cast<std::int32_t>(index), at - index};
}

}  // namespace geometry
