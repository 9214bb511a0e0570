// Region growing in three passes: down the page and along its rows to the right, then up and to the
// left, then down again. Dark pixels in the first row and the first column of a pass begin a
// border. Every other pixel joins it when a neighbour on the side that the pass comes from is
// marked, when it is not too light, and when it differs little from its neighbours on that side.
//
// A pass leaves nothing to do for another one in the same direction. So the second downward pass
// can mark pixels only where they hang on some that the upward pass has marked: it passes over the
// rows in which, and above which, nothing has changed since the first one.
#include "cleaning/borders/border_growth.h"

#include <algorithm>
#include <cstdlib>

#include "simd/pixels/plain/border_rows.h"

namespace cleaning {
namespace {

using simd::PassDirection;

std::uint8_t below_as_at_most(std::int32_t limit) {
    return static_cast<std::uint8_t>(std::clamp(limit, 1, 256) - 1);
}

class Growth {
  public:
    Growth(const BorderPage& page, const BorderLimits& limits, BorderMask& mask)
        : page_(page),
          limits_(limits),
          mask_(mask),
          lines_(page),
          due_(static_cast<std::size_t>(page.height)),
          shape_{page.layout, static_cast<std::size_t>(page.width)},
          joins_{below_as_at_most(limits.light), below_as_at_most(limits.step)} {}

    void run() {
        std::fill(due_.begin(), due_.end(), std::uint8_t{1});
        pass(PassDirection::kRight);
        std::fill(due_.begin(), due_.end(), std::uint8_t{1});
        pass(PassDirection::kLeft);
        pass(PassDirection::kRight);
    }

  private:
    // Visits the rows that are due, and each row that follows one that was due or has changed.
    // Afterwards the rows that this pass has changed are due, for the next one.
    void pass(PassDirection direction) {
        const std::ptrdiff_t step = direction == PassDirection::kRight ? 1 : -1;
        const std::ptrdiff_t first = direction == PassDirection::kRight ? 0 : page_.height - 1;
        bool due = false;
        for (std::ptrdiff_t i = 0; i < page_.height; ++i) {
            const std::ptrdiff_t y = first + i * step;
            std::uint8_t& flag = due_[static_cast<std::size_t>(y)];
            due = due || flag != 0;
            if (!due) continue;
            const bool changed = i == 0 ? visit_first(direction, y) : visit(direction, y, y - step);
            due = flag != 0 || changed;
            flag = changed ? 1 : 0;
        }
    }

    // In the first row of a pass every dark pixel is marked, and there is no row to come from. The
    // row counts as changed in any case.
    bool visit_first(PassDirection direction, std::ptrdiff_t y) {
        simd::GreyLine& line = lines_.row(y);
        if (limits_.dark > 0) {
            simd::mark_dark(shape_, line, below_as_at_most(limits_.dark), mask_.row(y));
        }
        if (propagates()) {
            const std::uint64_t* const blank =
                mask_.row(direction == PassDirection::kRight ? -1 : page_.height);
            simd::propagate_marks(direction, shape_, joins_, line, line, blank, mask_.row(y));
        }
        return true;
    }

    bool visit(PassDirection direction, std::ptrdiff_t y, std::ptrdiff_t neighbour) {
        bool changed =
            mark_edge_pixel(y, neighbour, direction == PassDirection::kRight ? 0 : page_.width - 1);
        if (propagates()) {
            changed |=
                simd::propagate_marks(direction, shape_, joins_, lines_.row(y),
                                      lines_.row(neighbour), mask_.row(neighbour), mask_.row(y));
        }
        return changed;
    }

    // The first pixel of a row has a neighbour in the row that the pass comes from only.
    bool mark_edge_pixel(std::ptrdiff_t y, std::ptrdiff_t neighbour, std::ptrdiff_t x) {
        if (mask_.marked(y, x)) return false;
        const std::int32_t here = grey_at(y, x);
        const bool joins = here < limits_.light && mask_.marked(neighbour, x) &&
                           std::abs(here - grey_at(neighbour, x)) < limits_.step;
        if (here >= limits_.dark && !joins) return false;
        mask_.mark(y, x);
        return true;
    }

    std::int32_t grey_at(std::ptrdiff_t y, std::ptrdiff_t x) const {
        const auto bytes = static_cast<std::ptrdiff_t>(simd::pixel_bytes(page_.layout));
        return simd::plain::grey_value(page_.layout, page_.row(y) + x * bytes);
    }

    bool propagates() const { return limits_.light > 0 && limits_.step > 0; }

    const BorderPage& page_;
    const BorderLimits& limits_;
    BorderMask& mask_;
    GreyLines lines_;
    frame::Buffer<std::uint8_t> due_;  // per row: 1 when the pass has something to do there
    simd::RowShape shape_;
    simd::JoinLimits joins_;
};

}  // namespace

// A line has room for a block of grey values on either side, where the kernels read neighbours.
GreyLines::GreyLines(const BorderPage& page)
    : page_(page),
      room_((simd::mask_words(static_cast<std::size_t>(page.width)) + 2) * simd::kMaskBlock),
      flags_((room_ / simd::kMaskBlock + 63) / 64),
      grey_(frame::Buffer<std::uint8_t>::zeroed(2 * room_)),
      ready_(frame::Buffer<std::uint64_t>::zeroed(2 * flags_)) {
    for (std::size_t i = 0; i < 2; ++i) {
        lines_[i] = {nullptr, grey_.data() + i * room_ + simd::kMaskBlock,
                     ready_.data() + i * flags_};
    }
}

simd::GreyLine& GreyLines::row(std::ptrdiff_t y) {
    simd::GreyLine& line = lines_[y % 2];
    if (line.pixels != page_.row(y)) {
        line.pixels = page_.row(y);
        std::fill_n(line.ready, flags_, std::uint64_t{0});
    }
    return line;
}

void grow_border(const BorderPage& page, const BorderLimits& limits, BorderMask& mask) {
    Growth(page, limits, mask).run();
}

}  // namespace cleaning
