// A window is labelled as find_components() labels a page (run_labels.cpp), from runs that stay.
// The rows that are labelled already when a window begins, fewer than `tall`, take their labels
// along: the components that they name are the first ones of the new window.
#include "ink/run_windows.h"

#include <algorithm>
#include <limits>
#include <new>

#include "ink/larger_buffer.h"
#include "simd/bits/run_edges.h"

namespace ink {

RunWindows::RunWindows(common::BitonalView page, std::int32_t tall, std::size_t runs_at_once)
    : page_(page),
      tall_(tall),
      runs_at_once_(runs_at_once),
      offsets_(static_cast<std::size_t>(page.height) + 1),
      forest_(page) {
    simd::count_runs(page.data, page.stride, page.height, page.width, false, offsets_.data());
}

bool RunWindows::next() {
    if (end_ == page_.height) return false;
    drop_window();
    label_to(last_row_to_label());
    end_ = labelled_ == page_.height ? labelled_ : labelled_ - tall_ + 1;
    forest_.fold();
    return true;
}

RowRuns RunWindows::row(std::int32_t y) {
    const std::size_t first = runs_between(begin_, y);
    return {runs_.data() + first, labels_.data() + first, runs_between(y, y + 1)};
}

std::size_t RunWindows::runs_between(std::int32_t y0, std::int32_t y1) const {
    return offsets_[static_cast<std::size_t>(y1)] - offsets_[static_cast<std::size_t>(y0)];
}

// One past it: 2 * tall rows below the window's first one, and further as long as there is room.
std::int32_t RunWindows::last_row_to_label() const {
    const std::int64_t least =
        std::min<std::int64_t>(page_.height, begin_ + 2 * std::int64_t{tall_});
    const std::size_t* const first_beyond =
        std::upper_bound(offsets_.begin() + least, offsets_.end(),
                         offsets_[static_cast<std::size_t>(begin_)] + runs_at_once_);
    return static_cast<std::int32_t>(
        std::max<std::int64_t>(least, first_beyond - offsets_.begin() - 1));
}

// Moves the runs of the rows that are labelled beyond the window to the front.
void RunWindows::drop_window() {
    const std::size_t dropped = runs_between(begin_, end_);
    const std::size_t kept = runs_between(end_, labelled_);
    std::copy_n(runs_.begin() + dropped, kept, runs_.begin());
    std::copy_n(labels_.begin() + dropped, kept, labels_.begin());
    forest_.keep(labels_.data(), kept);
    begin_ = end_;
}

void RunWindows::label_to(std::int32_t y_end) {
    const std::size_t count = runs_between(begin_, y_end);
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw std::bad_alloc();
    }
    const std::size_t room = count + simd::kRunSlack / 2;
    if (room > runs_.size()) {
        const std::size_t capacity = room + count / 8;  // windows of noise differ by little
        labels_ = larger_buffer(labels_, capacity);
        runs_ = larger_buffer(runs_, capacity);
    }
    if (labelled_ == y_end) return;
    simd::extract_rows(page_.row(labelled_), page_.stride, y_end - labelled_, page_.width, false,
                       &runs_.data()[runs_between(begin_, labelled_)].x0);
    RowRuns above = labelled_ > begin_ ? row(labelled_ - 1) : RowRuns{};
    for (std::int32_t y = labelled_; y < y_end; ++y) {
        const RowRuns below = row(y);
        label_row(above, below, y, forest_);
        above = below;
    }
    labelled_ = y_end;
}

}  // namespace ink
