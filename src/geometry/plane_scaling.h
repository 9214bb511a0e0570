// A grey plane in another size: the width is scaled first, into whole values, then the height.
//
// Keep true: sizes are positive, the planes do not overlap.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"
#include "geometry/axis.h"

namespace geometry {

// Scales columns as rows of transposed strips: all pixels of a row then have one position and one
// set of weights.
class WidthScaler {
  public:
    // At most this many rows at a time: a strip and its result stay in the second-level cache.
    static constexpr std::int32_t kRows = 64;

    WidthScaler(const Axis& axis, std::int32_t source_width);

    // Rows of the source's width to as many rows of the target's.
    void scale(common::GreyView strip, common::MutableGreyView to);

  private:
    const Axis& axis_;
    frame::Buffer<std::uint8_t> from_;
    frame::Buffer<std::uint8_t> to_;
};

// Scales a plane from top to bottom on the calling thread, without a working image of its size:
// the rows of a strip that are scaled in width are used up before the next strip comes.
//
// Use: (add (make_row)*)*, where make_row() makes the next target row as long as has_row().
class StripScaler {
  public:
    struct Size {
        std::int32_t height, width;
    };

    StripScaler(Filter filter, const Size& source, const Size& target);
    StripScaler(const StripScaler&) = delete;
    StripScaler& operator=(const StripScaler&) = delete;

    // The next rows of the source, WidthScaler::kRows at most.
    void add(common::GreyView strip);

    // Whether all rows that the next target row is made of have come.
    bool has_row() const;
    void make_row(std::uint8_t* out);

  private:
    std::uint8_t* row(std::int64_t i) { return memory_.data() + (i - first_) * target_.width; }

    Size source_;
    Size target_;
    Axis columns_;
    Axis rows_;
    WidthScaler width_;
    frame::Buffer<std::uint8_t> memory_;
    std::int32_t first_ = 0;  // the source row that memory_ begins with
    std::int32_t end_ = 0;    // the one behind its last
    std::int32_t next_ = 0;   // target row
};

// Writes the pixels of dst and nothing between its rows, none before all memory is there. `threads`
// (1: the calling thread only) is a request; the result is the same for any.
void scale_plane(Filter filter, common::GreyView src, common::MutableGreyView dst,
                 std::int32_t threads);

}  // namespace geometry
