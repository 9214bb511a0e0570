// Region growing in three passes: down the page and along its rows to the right, up and to the
// left, and down again. A border is begun by dark pixels of the first row and column of a pass; any
// other pixel joins a marked neighbour behind it where the page is not too light and changes
// little.
//
// What has been grown in one direction is complete for that direction: whatever the second
// downward pass adds hangs on what the upward pass has added, and rows without any of that, in
// them or above them, are passed over.
#include "cleaning/borders/border_growth.h"

#include <algorithm>
#include <cstdlib>

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
    // Visits the rows that are due or come after one that is due or changes. Leaves those due that
    // it changed.
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

    // The first row of a pass: any dark pixel is marked, and no row lies behind. Its change counts
    // as one in any case.
    bool visit_first(PassDirection direction, std::ptrdiff_t y) {
        simd::GreyLine& line = lines_.row(y);
        if (limits_.dark > 0) {
            simd::mark_dark(shape_, line, below_as_at_most(limits_.dark), mask_.row(y));
        }
        if (spreads()) {
            const std::uint64_t* const blank =
                mask_.row(direction == PassDirection::kRight ? -1 : page_.height);
            simd::propagate_marks(direction, shape_, joins_, line, line, blank, mask_.row(y));
        }
        return true;
    }

    bool visit(PassDirection direction, std::ptrdiff_t y, std::ptrdiff_t neighbour) {
        bool changed =
            mark_edge_pixel(y, neighbour, direction == PassDirection::kRight ? 0 : page_.width - 1);
        if (spreads()) {
            changed |=
                simd::propagate_marks(direction, shape_, joins_, lines_.row(y),
                                      lines_.row(neighbour), mask_.row(neighbour), mask_.row(y));
        }
        return changed;
    }

    // The first pixel of a walk, whose only neighbour is in the row behind.
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

    bool spreads() const { return limits_.light > 0 && limits_.step > 0; }

    const BorderPage& page_;
    const BorderLimits& limits_;
    BorderMask& mask_;
    GreyLines lines_;
    frame::Buffer<std::uint8_t> due_;  // per row: 1 when the pass has something to do there
    simd::RowShape shape_;
    simd::JoinLimits joins_;
};

}  // namespace

// A line has a block of room on either side of its grey values for the kernels' neighbours.
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
