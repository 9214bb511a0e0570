// The step that every labelling of 8-connected components consists of: the runs of a row take the
// labels of the runs above that they touch.
//
// Use, with two LabelledRuns that change places from row to row:
//     row.extract(ink_value, pixels, x_start, width);
//     label_row(above.runs(), row.runs(), y, labels);
//     std::swap(above, row);
//
// `labels` is what keeps the components. It has these members, where a run is a PixelRun:
//     std::int32_t start(run, y);
//         makes a component that begins with this run, and returns its label.
//     std::int32_t root(label);
//         returns the label that stands for the component of this one.
//     std::int32_t unite(root, other);
//         makes the components of two roots one, and returns its root.
//     std::int32_t extend(label, root, run, y);
//         adds a run to a component and returns the label of the run. `label` is that of the first
//         run above that touches it.
//     void pass(label);
//         is called for each run above that no run of the row touches.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/buffer.h"
#include "ink/extract_runs.h"
#include "ink/run.h"

namespace ink {

// Runs of a row from left to right, and a place for the label of each.
struct RowRuns {
    const PixelRun* runs = nullptr;
    std::int32_t* labels = nullptr;
    std::size_t count = 0;
};

// Room for the runs of one row and their labels. Throws std::bad_alloc.
class LabelledRuns {
  public:
    LabelledRuns() = default;
    explicit LabelledRuns(std::int32_t width)
        : runs_(most_runs(width)), labels_(most_runs(width)) {}

    void extract(int ink_value, const std::uint8_t* row, std::int32_t x_start, std::int32_t width) {
        const std::int32_t values = extract_runs(ink_value, row, x_start, width, &runs_.data()->x0);
        count_ = static_cast<std::size_t>(values) / 2;
    }
    void clear() { count_ = 0; }

    RowRuns runs() { return {runs_.data(), labels_.data(), count_}; }

  private:
    static std::size_t most_runs(std::int32_t width) {
        return static_cast<std::size_t>(width) / 2 + 1;
    }

    frame::Buffer<PixelRun> runs_;
    frame::Buffer<std::int32_t> labels_;
    std::size_t count_ = 0;
};

// Positions are half-open ranges, so runs touch, corners included, when neither ends before the
// other begins.
template <class Labels>
void label_row(const RowRuns& above, const RowRuns& row, std::int32_t y, Labels& labels) {
    std::size_t a = 0;
    bool touched = false;  // run a of the row above
    const auto next_above = [&] {
        if (!touched) labels.pass(above.labels[a]);
        touched = false;
        ++a;
    };
    for (std::size_t i = 0; i < row.count; ++i) {
        const PixelRun run = row.runs[i];
        while (a < above.count && above.runs[a].x1 < run.x0) next_above();
        if (a == above.count || above.runs[a].x0 > run.x1) {
            row.labels[i] = labels.start(run, y);
            continue;
        }
        touched = true;
        const std::int32_t label = above.labels[a];
        std::int32_t root = labels.root(label);
        // The last run above that touches this one may touch the next one too.
        while (a + 1 < above.count && above.runs[a + 1].x0 <= run.x1) {
            const std::int32_t other = labels.root(above.labels[++a]);
            if (other != root) root = labels.unite(root, other);
        }
        row.labels[i] = labels.extend(label, root, run, y);
    }
    while (a < above.count) next_above();
}

// The root of a label in a forest whose parent(label) is a reference to its parent's label, or to
// its own for a root. Halves the path on the way.
template <class Parent>
std::int32_t find_root(std::int32_t label, Parent parent) {
    while (parent(label) != label) {
        parent(label) = parent(parent(label));
        label = parent(label);
    }
    return label;
}

}  // namespace ink
