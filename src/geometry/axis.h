// The rows of a scaled image from the rows of its source: one axis of a scaling. The other axis is
// the same after an exchange of rows and columns.
//
// Use: Axis axis(Filter::kBicubic, source_rows, target_rows); axis.make(j, row_at, width, out) for
// any target row j, where row_at(i) is source row i; it asks for rows first(j) to last(j) only.
#pragma once

#include <cstdint>
#include <cstring>

#include "geometry/sampling.h"
#include "simd/pixels/blend_rows.h"

namespace geometry {

enum class Filter { kBilinear, kBicubic };

// The weights of target pixel `phase` of a cycle; phase 0 is a source pixel.
constexpr simd::WholeWeights whole_weights(Filter filter, Ratio ratio, std::int32_t phase) {
    using Weights = simd::WholeWeights;
    constexpr Weights kNone{0, 1, 0, 0, 1};
    constexpr Weights kLinear[3][4] = {{kNone, {0, 1, 1, 0, 2}},
                                       {kNone, {0, 2, 1, 0, 3}, {0, 1, 2, 0, 3}},
                                       {kNone, {0, 3, 1, 0, 4}, {0, 1, 1, 0, 2}, {0, 1, 3, 0, 4}}};
    constexpr Weights kCubic[3][4] = {
        {kNone, {1, 9, 9, 1, 16}},
        {kNone, {4, 42, 18, 2, 54}, {1, 9, 21, 2, 27}},
        {kNone, {9, 111, 29, 3, 128}, {1, 9, 9, 1, 16}, {3, 29, 111, 9, 128}}};
    const auto& weights = filter == Filter::kBilinear ? kLinear : kCubic;
    return weights[static_cast<int>(ratio)][phase];
}

class Axis {
  public:
    Axis(Filter filter, std::int32_t source, std::int32_t target)
        : filter_(filter), ratio_(ratio_of(source, target)), source_(source), target_(target) {}

    std::int32_t first(std::int32_t j) const { return clamped(index(j) - before(), source_); }
    std::int32_t last(std::int32_t j) const { return clamped(index(j) + 1 + before(), source_); }

    template <class RowAt>
    void make(std::int32_t j, const RowAt& row_at, std::size_t width, std::uint8_t* out) const {
        const std::int32_t i = index(j);
        const auto neighbour = [&](std::int64_t offset) {
            return row_at(clamped(i + offset, source_));
        };
        const bool cubic = filter_ == Filter::kBicubic;
        const simd::Neighbours rows{cubic ? neighbour(-1) : nullptr, neighbour(0), neighbour(1),
                                    cubic ? neighbour(2) : nullptr};
        if (ratio_ != Ratio::kOther) {
            simd::weigh_rows(rows, whole_weights(filter_, ratio_, phase(j)), width, out);
        } else if (cubic) {
            simd::cubic_rows(rows, position(source_, target_, j).fraction, width, out);
        } else {
            simd::linear_rows(rows, position(source_, target_, j).fraction, width, out);
        }
    }

  private:
    std::int64_t before() const { return filter_ == Filter::kBicubic ? 1 : 0; }

    // Source pixels that a cycle of the ratio covers.
    std::int64_t advance() const { return ratio_ == Ratio::kTwo ? 1 : phases(ratio_) - 1; }

    std::int32_t index(std::int32_t j) const {
        if (ratio_ == Ratio::kOther) return position(source_, target_, j).index;
        return static_cast<std::int32_t>(j * advance() / phases(ratio_));
    }
    std::int32_t phase(std::int32_t j) const {
        return static_cast<std::int32_t>(j * advance() % phases(ratio_));
    }

    Filter filter_;
    Ratio ratio_;
    std::int32_t source_;
    std::int32_t target_;
};

}  // namespace geometry
