// A grey plane in another size.
//
// Keep true: sizes are positive, the planes do not overlap.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "geometry/axis.h"

namespace geometry {

// Scales the width first, into whole values, then the height. Writes the pixels of dst and nothing
// between its rows, none before all memory is there. `threads` (1: the calling thread only) is a
// request; the result is the same for any.
void scale_plane(Filter filter, common::GreyView src, common::MutableGreyView dst,
                 std::int32_t threads);

}  // namespace geometry
