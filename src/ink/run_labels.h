// The 8-connected components of a whole page: each component's box and pixel count.
//
// Use:
//     const PageComponents found = find_components(page);
//     for (std::int32_t i = 0; i < found.count; ++i) use(found.components[i]);
//
// The components stand in the raster order of their first runs. Coordinates are 32-bit; the ends
// are exclusive. Who needs the runs too takes run_windows.h; who needs the components one at a time
// while the page is scanned, component_engine.h or component_stream.h.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "frame/buffer.h"
#include "ink/component_box.h"

namespace ink {

struct PageComponents {
    frame::Buffer<ComponentBox> components;  // may be larger than count
    std::int32_t count = 0;
};

// `ink_value` 0 makes 1-bits the ink, any other value 0-bits; bits beyond the width are ignored.
// Throws std::bad_alloc. Nothing in the library calls it yet.
PageComponents find_components(common::BitonalView page, int ink_value = 0);

}  // namespace ink
