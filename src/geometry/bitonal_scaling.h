// A bitonal page in another size, through a grey one.
//
// Keep true: sizes are positive, the pages do not overlap, rows have whole 32-bit words for their
// pixels.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "geometry/axis.h"

namespace geometry {

// Writes whole rows of dst, up to its stride, none before all else is done; behind the pixels there
// is paper. `threads` as for scale_plane().
void scale_bitonal(Filter filter, common::BitonalView src, common::MutableBitonalView dst,
                   std::int32_t threads);

}  // namespace geometry
