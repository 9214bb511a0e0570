// Two passes over runs instead of pixels, after Lacassagne and Zavidovique, "Light speed labeling"
// (2009), and Lemaitre, Hennequin and Lacassagne, "How to speed connected component labeling up
// with SIMD RLE algorithms" (2020): runs are extracted row by row with vector code, each run takes
// the label of the first run above that it touches, and labels that meet are united in a forest.
// Boxes and areas are collected under the provisional labels and folded into their roots together
// with the final numbering, so no pixel and no run is visited again for them.
//
// The cost of a page that holds little ink is mostly first touches of fresh memory: hence two rows
// of runs, and no more.

#include "ink/run_labels.h"

#include <utility>

#include "ink/label_forest.h"
#include "ink/row_labels.h"

namespace ink {

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
