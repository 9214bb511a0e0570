// A colour page in another size, through planes of luma and chroma.
//
// Keep true: sizes are positive, the pages do not overlap.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "geometry/axis.h"

namespace geometry {

struct ColourFilters {
    Filter luma;
    Filter chroma;
};

// Writes the pixels of dst and nothing between its rows, none before all else is done. `threads` is
// a request for the bicubic planes, which are scaled one after another; bilinear ones take one.
void scale_colour(const ColourFilters& filters, common::ColourView src,
                  common::MutableColourView dst, std::int32_t threads);

}  // namespace geometry
