// The rows of a scaled image from the rows of its source: one axis of a scaling. The other axis is
// the same after an exchange of rows and columns.
//
// Use: Axis axis(Filter::kBicubic, source_rows, target_rows); axis.make(j, row_at, width, out) for
// any target row j, where row_at(i) is source row i.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/buffer.h"
#include "geometry/sampling.h"
#include "simd/pixels/blend_rows.h"

namespace geometry {

enum class Filter { kBilinear, kBicubic };

// What a target row is made of.
struct Tap {
    enum class Kind { kCopy, kWhole, kLinear, kCubic };

    Kind kind;
    std::int32_t index;  // of the source row at or before it
    union {
        simd::WholeWeights whole;
        simd::LinearWeights linear;
        simd::CubicWeights cubic;
    };
};

class Axis {
  public:
    Axis(Filter filter, std::int32_t source, std::int32_t target);

    std::int32_t target() const { return static_cast<std::int32_t>(taps_.size()); }

    // The last source row that target row j may ask for, with either filter.
    std::int32_t last(std::int32_t j) const {
        return clamped(std::int64_t{taps_[static_cast<std::size_t>(j)].index} + 2, source_);
    }

    template <class RowAt>
    void make(std::int32_t j, const RowAt& row_at, std::size_t width, std::uint8_t* out) const {
        const Tap& tap = taps_[static_cast<std::size_t>(j)];
        const auto row = [&](std::int64_t offset) {
            return row_at(clamped(tap.index + offset, source_));
        };
        if (tap.kind == Tap::Kind::kCopy) {
            std::memcpy(out, row(0), width);
            return;
        }
        const simd::Neighbours rows{row(-1), row(0), row(1), row(2)};
        if (tap.kind == Tap::Kind::kWhole) {
            simd::weigh_rows(rows, tap.whole, width, out);
        } else if (tap.kind == Tap::Kind::kLinear) {
            simd::linear_rows(rows, tap.linear, width, out);
        } else {
            simd::cubic_rows(rows, tap.cubic, width, out);
        }
    }

  private:
    std::int32_t source_;
    frame::Buffer<Tap> taps_;
};

}  // namespace geometry
