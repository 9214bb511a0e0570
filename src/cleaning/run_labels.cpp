// Two passes over runs instead of pixels, after Lacassagne and Zavidovique, "Light speed labeling"
// (2009), and Lemaitre, Hennequin and Lacassagne, "How to speed connected component labeling up
// with SIMD RLE algorithms" (2020): runs are extracted row by row with vector code, each run takes
// the label of the first run above that it touches, and labels that meet are united in a forest
// whose roots are the smallest labels. Boxes and areas are collected under the first labels and
// folded into their roots together with the final numbering, so no pixel and no run is visited
// again for them.
//
// Labels are given in raster order and roots are the smallest of their trees: a label is never
// below its parent, one ascending pass resolves the forest, and the numbering follows the first
// runs.

#include "cleaning/run_labels.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "simd/run_edges.h"

namespace cleaning {
namespace {

// First labels with what they have collected; parent[label] <= label.
class LabelForest {
  public:
    std::int32_t add(std::int32_t x0, std::int32_t x1, std::int32_t y) {
        if (static_cast<std::size_t>(size_) == parents_.size()) grow();
        const std::int32_t label = size_++;
        parent(label) = label;
        node(label) = LabelledComponent{x0, x1, y, y + 1, std::int64_t{x1} - x0, 1};
        return label;
    }

    void extend(std::int32_t label, std::int32_t x0, std::int32_t x1, std::int32_t y) {
        LabelledComponent& grown = node(label);
        grown.x0 = std::min(grown.x0, x0);
        grown.x1 = std::max(grown.x1, x1);
        grown.y1 = y + 1;
        grown.area += std::int64_t{x1} - x0;
        ++grown.run_count;
    }

    std::int32_t root(std::int32_t label) {
        while (parent(label) != label) {
            parent(label) = parent(parent(label));
            label = parent(label);
        }
        return label;
    }

    // Both are roots; returns the one of the two that stays.
    std::int32_t unite(std::int32_t a, std::int32_t b) {
        if (a > b) std::swap(a, b);
        parent(b) = a;
        return a;
    }

    // Turns the parents into dense numbers and the nodes into finished components at the front.
    // Returns their number.
    std::int32_t resolve() {
        std::int32_t count = 0;
        for (std::int32_t label = 0; label < size_; ++label) {
            const LabelledComponent part = node(label);
            if (parent(label) == label) {
                node(count) = part;
                parent(label) = count++;
                continue;
            }
            parent(label) = parent(parent(label));
            LabelledComponent& whole = node(parent(label));
            whole.x0 = std::min(whole.x0, part.x0);
            whole.x1 = std::max(whole.x1, part.x1);
            whole.y1 = std::max(whole.y1, part.y1);
            whole.area += part.area;
            whole.run_count += part.run_count;
        }
        return count;
    }

    std::int32_t number(std::int32_t label) const {
        return parents_[static_cast<std::size_t>(label)];
    }

    frame::Buffer<LabelledComponent> take_components() { return std::move(nodes_); }

  private:
    std::int32_t& parent(std::int32_t label) { return parents_[static_cast<std::size_t>(label)]; }
    LabelledComponent& node(std::int32_t label) { return nodes_[static_cast<std::size_t>(label)]; }

    void grow() {
        const std::size_t used = static_cast<std::size_t>(size_);
        const std::size_t capacity = std::max<std::size_t>(1024, 2 * used);
        frame::Buffer<std::int32_t> parents(capacity);
        frame::Buffer<LabelledComponent> nodes(capacity);
        std::copy_n(parents_.begin(), used, parents.begin());
        std::copy_n(nodes_.begin(), used, nodes.begin());
        parents_ = std::move(parents);
        nodes_ = std::move(nodes);
    }

    frame::Buffer<std::int32_t> parents_;
    frame::Buffer<LabelledComponent> nodes_;
    std::int32_t size_ = 0;
};

// Labels the runs of row y, [begin, end), with those of the row above, [above, begin), labelled.
void label_row(const PixelRun* runs, std::size_t above, std::size_t begin, std::size_t end,
               std::int32_t y, std::int32_t* labels, LabelForest& forest) {
    for (std::size_t i = begin; i < end; ++i) {
        const auto [x0, x1] = runs[i];
        while (above < begin && runs[above].x1 < x0) ++above;
        if (above == begin || runs[above].x0 > x1) {
            labels[i] = forest.add(x0, x1, y);
            continue;
        }
        std::int32_t label = forest.root(labels[above]);
        // The last run above that touches this one may touch the next one too.
        while (above + 1 < begin && runs[above + 1].x0 <= x1) {
            ++above;
            const std::int32_t other = forest.root(labels[above]);
            if (other != label) label = forest.unite(label, other);
        }
        forest.extend(label, x0, x1, y);
        labels[i] = label;
    }
}

}  // namespace

RunLabels label_runs(common::BitonalView page, int ink_value) {
    const bool invert = ink_value != 0;
    const std::int32_t height = std::max(page.height, 0);
    const std::size_t rows = static_cast<std::size_t>(height);
    RunLabels result;
    result.row_offsets = frame::Buffer<std::size_t>::zeroed(rows + 1);
    if (height == 0 || page.width <= 0) return result;

    simd::count_runs(page.data, page.stride, height, page.width, invert, result.row_offsets.data());
    result.run_count = result.row_offsets[rows];
    if (result.run_count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw std::bad_alloc();
    }
    result.runs = frame::Buffer<PixelRun>(result.run_count + simd::kRunSlack / 2);
    static_assert(sizeof(PixelRun) == 2 * sizeof(std::int32_t));
    simd::extract_rows(page.data, page.stride, height, page.width, invert, &result.runs.data()->x0);

    result.label_of_run = frame::Buffer<std::int32_t>(result.run_count);
    LabelForest forest;
    std::size_t above = 0;
    for (std::size_t y = 0; y < rows; ++y) {
        const std::size_t begin = result.row_offsets[y];
        label_row(result.runs.data(), above, begin, result.row_offsets[y + 1],
                  static_cast<std::int32_t>(y), result.label_of_run.data(), forest);
        above = begin;
    }
    result.component_count = forest.resolve();
    for (std::int32_t& label : result.label_of_run) label = forest.number(label);
    result.components = forest.take_components();
    return result;
}

}  // namespace cleaning
