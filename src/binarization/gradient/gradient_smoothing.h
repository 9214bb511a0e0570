// The Gaussian smoothing that may precede the search for edges.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace binarization {

// Row y of the image under the weights 1 2 1 / 2 4 2 / 1 2 1, rounded, halves up. Neighbours that
// the image does not have are left out and the other weights raised to the same sum.
void smooth_gaussian(const common::GreyView& grey, std::int32_t y, std::uint8_t* out);

}  // namespace binarization
