// Where the pixels of a target lie in its source, along one axis.
//
// Target pixel j of an axis lies at j * (source / target) in the source, without an offset of half
// a pixel: target pixel 0 is source pixel 0. Three ratios are kept exact by whole phases instead.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace geometry {

constexpr std::int32_t clamped(std::int64_t index, std::int32_t size) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(index, 0, size - 1));
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

// A cycle of positions: phases() target pixels over source_pixels() of the source.
constexpr std::int32_t phases(Ratio ratio) {
    return ratio == Ratio::kTwo ? 2 : ratio == Ratio::kThreeHalves ? 3 : 4;
}

constexpr std::int32_t source_pixels(Ratio ratio) {
    return phases(ratio) - 1;
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
