#include "geometry/axis.h"

namespace geometry {
namespace {

using simd::WholeWeights;

constexpr WholeWeights kLinear[3][3] = {{{0, 1, 1, 0, 2}},
                                        {{0, 2, 1, 0, 3}, {0, 1, 2, 0, 3}},
                                        {{0, 3, 1, 0, 4}, {0, 1, 1, 0, 2}, {0, 1, 3, 0, 4}}};
constexpr WholeWeights kCubic[3][3] = {
    {{1, 9, 9, 1, 16}},
    {{4, 42, 18, 2, 54}, {1, 9, 21, 2, 27}},
    {{9, 111, 29, 3, 128}, {1, 9, 9, 1, 16}, {3, 29, 111, 9, 128}}};

Tap whole_tap(Filter filter, Ratio ratio, std::int64_t j) {
    const std::int64_t cycle = phases(ratio);
    const std::int64_t at = j * source_pixels(ratio);
    const auto phase = static_cast<std::size_t>(at % cycle);
    Tap tap{Tap::Kind::kCopy, static_cast<std::int32_t>(at / cycle), {}};
    if (phase == 0) return tap;
    const auto& weights = filter == Filter::kBilinear ? kLinear : kCubic;
    tap.kind = Tap::Kind::kWhole;
    tap.whole = weights[static_cast<std::size_t>(ratio)][phase - 1];
    return tap;
}

// Without a fraction both filters give the source pixel.
Tap fractional_tap(Filter filter, const Position& position) {
    Tap tap{Tap::Kind::kCopy, position.index, {}};
    if (position.fraction == 0) return tap;
    if (filter == Filter::kBilinear) {
        tap.kind = Tap::Kind::kLinear;
        tap.linear = simd::linear_weights(position.fraction);
    } else {
        tap.kind = Tap::Kind::kCubic;
        tap.cubic = simd::cubic_weights(position.fraction);
    }
    return tap;
}

}  // namespace

Axis::Axis(Filter filter, std::int32_t source, std::int32_t target)
    : source_(source), taps_(static_cast<std::size_t>(target)) {
    const Ratio ratio = ratio_of(source, target);
    for (std::int32_t j = 0; j < target; ++j)
        taps_[static_cast<std::size_t>(j)] =
            ratio == Ratio::kOther ? fractional_tap(filter, position(source, target, j))
                                   : whole_tap(filter, ratio, j);
}

}  // namespace geometry
