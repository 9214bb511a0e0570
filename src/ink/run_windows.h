// The runs of a page and the 8-connected components that they belong to, a window of rows at a
// time, in memory for the rows of two windows at most.
//
// Use:
//     RunWindows windows(page, tall);
//     while (windows.next())
//         for (std::int32_t y = windows.begin(); y < windows.end(); ++y)
//             for each run of windows.row(y): use(run, windows.component(its label));
//
// The windows follow one another down the page and cover each row once. A component's box is
// complete as soon as the last row of the component is labelled. That goes further down than the
// window: the box of a component that is still growing then is at least `tall` rows high. So
// whoever asks for components of fewer rows than that only, gets true answers for all runs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"
#include "ink/component_box.h"
#include "ink/label_forest.h"
#include "ink/row_labels.h"
#include "ink/run.h"

namespace ink {

class RunWindows {
  public:
    // Runs at hand at one time, in a megabyte and a half: fewer cost less, but rows that are taken
    // along from window to window do too. Windows have more of them only where these would not be
    // 2 * tall rows.
    static constexpr std::size_t kRunsAtOnce = std::size_t{1} << 17;

    // Ink is the 1-bits; bits beyond the width are ignored. 1 <= tall. Throws std::bad_alloc.
    RunWindows(common::BitonalView page, std::int32_t tall, std::size_t runs_at_once = kRunsAtOnce);

    // Moves on to the next window, to the first one at first; false at the end of the page. Throws
    // std::bad_alloc.
    bool next();

    std::int32_t begin() const { return begin_; }
    std::int32_t end() const { return end_; }

    RowRuns row(std::int32_t y);

    // Labels of the window are 0 .. label_count() - 1. Several may stand for one component: its
    // root is one of them.
    std::int32_t label_count() const { return forest_.size(); }
    std::int32_t root(std::int32_t label) const { return forest_.folded_root(label); }
    const ComponentBox& component(std::int32_t root) const { return forest_.component(root); }

  private:
    std::size_t runs_between(std::int32_t y0, std::int32_t y1) const;
    std::int32_t last_row_to_label() const;
    void drop_window();
    void label_to(std::int32_t y);

    common::BitonalView page_;
    std::int32_t tall_;
    std::size_t runs_at_once_;
    frame::Buffer<std::size_t> offsets_;  // height + 1: the runs above each row
    frame::Buffer<PixelRun> runs_;        // of the rows begin_ .. labelled_ - 1
    frame::Buffer<std::int32_t> labels_;  // of these
    LabelForest forest_;
    std::int32_t begin_ = 0;
    std::int32_t end_ = 0;
    std::int32_t labelled_ = 0;  // rows above this one are labelled
};

}  // namespace ink
