// The 8-connected components of a whole page: each component's box and pixel count, and where
// wanted the runs of the page with the component of each.
//
// Use:
//     const PageComponents found = find_components(page);
//     for (std::int32_t i = 0; i < found.count; ++i) use(found.components[i]);
//
//     const RunLabels labels = label_runs(page);
//     for (std::size_t i = labels.row_offsets[y]; i < labels.row_offsets[y + 1]; ++i)
//         use(labels.runs[i], labels.components[labels.label_of_run[i]]);
//
// The runs stand in raster order, the components in the raster order of their first runs.
// Coordinates are 32-bit; the ends are exclusive. Operations that need the components one at a time
// while the page is scanned, or little memory, use component_engine.h or component_stream.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"
#include "ink/component_box.h"
#include "ink/run.h"

namespace ink {

struct PageComponents {
    frame::Buffer<ComponentBox> components;  // may be larger than count
    std::int32_t count = 0;
};

struct RunLabels {
    frame::Buffer<std::size_t> row_offsets;  // height + 1: the runs of row y are [y] .. [y + 1] - 1
    frame::Buffer<PixelRun> runs;            // may be larger than run_count
    frame::Buffer<std::int32_t> label_of_run;
    frame::Buffer<ComponentBox> components;  // may be larger than component_count
    std::size_t run_count = 0;
    std::int32_t component_count = 0;
};

// `ink_value` 0 makes 1-bits the ink, any other value 0-bits; bits beyond the width are ignored.
// Throws std::bad_alloc, also for a page of more than 2,147,483,647 runs.
RunLabels label_runs(common::BitonalView page, int ink_value = 0);

// The same components without the runs, in less time and memory. Nothing in the library calls it
// yet.
PageComponents find_components(common::BitonalView page, int ink_value = 0);

}  // namespace ink
