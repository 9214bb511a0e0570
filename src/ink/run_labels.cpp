// Two passes over runs instead of pixels, after Lacassagne and Zavidovique, "Light speed labeling"
// (2009), and Lemaitre, Hennequin and Lacassagne, "How to speed connected component labeling up
// with SIMD RLE algorithms" (2020): runs are extracted row by row with vector code, each run takes
// the label of the first run above that it touches, and labels that meet are united in a forest.
// Boxes and areas are collected under the provisional labels and folded into their roots together
// with the final numbering, so no pixel and no run is visited again for them.
//
// The cost of a page that holds little ink is mostly first touches of fresh memory. Hence the form
// that gives components only and keeps two rows of runs, and, in the other one, a count before the
// extraction instead of arrays that grow.

#include "ink/run_labels.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "ink/label_forest.h"
#include "ink/row_labels.h"
#include "simd/bits/run_edges.h"

namespace ink {

RunLabels label_runs(common::BitonalView page, int ink_value) {
    const bool invert = ink_value != 0;
    const std::int32_t height = std::max(page.height, 0);
    const std::size_t rows = static_cast<std::size_t>(height);
    RunLabels result;
    result.row_offsets = frame::Buffer<std::size_t>::zeroed(rows + 1);
    if (height == 0 || page.width <= 0) return result;

    std::size_t* const offsets = result.row_offsets.data();
    simd::count_runs(page.data, page.stride, height, page.width, invert, offsets);
    result.run_count = offsets[rows];
    if (result.run_count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw std::bad_alloc();
    }
    result.runs = frame::Buffer<PixelRun>(result.run_count + simd::kRunSlack / 2);
    result.label_of_run = frame::Buffer<std::int32_t>(result.run_count);
    simd::extract_rows(page.data, page.stride, height, page.width, invert, &result.runs.data()->x0);

    LabelForest forest(page);
    RowRuns above;
    for (std::int32_t y = 0; y < height; ++y) {
        const RowRuns row{result.runs.data() + offsets[y], result.label_of_run.data() + offsets[y],
                          offsets[y + 1] - offsets[y]};
        label_row(above, row, y, forest);
        above = row;
    }
    result.component_count = forest.resolve();
    for (std::int32_t& label : result.label_of_run) label = forest.number(label);
    result.components = forest.take_components();
    return result;
}

PageComponents find_components(common::BitonalView page, int ink_value) {
    PageComponents result;
    if (page.height <= 0 || page.width <= 0) return result;
    LabelForest forest(page);
    LabelledRuns row(page.width);
    LabelledRuns above(page.width);
    for (std::int32_t y = 0; y < page.height; ++y) {
        row.extract(ink_value, page.row(y), 0, page.width);
        label_row(above.runs(), row.runs(), y, forest);
        std::swap(row, above);
    }
    result.count = forest.resolve();
    result.components = forest.take_components();
    return result;
}

}  // namespace ink
