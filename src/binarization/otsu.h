// The automatic threshold of a grey image.
#pragma once

#include <cstdint>

#include "common/views.h"
#include "simd/pixels/histogram.h"

namespace binarization {

// Pixels at each grey level.
using Histogram = simd::Histogram;

Histogram histogram(const common::GreyView& grey);

// The level t that parts the histogram into 0 .. t and t + 1 .. 255 with the largest variance
// between the classes, the first one where several do; 0 for a histogram of one level or none.
// Source: N. Otsu, A threshold selection method from gray-level histograms, IEEE Transactions on
// Systems, Man and Cybernetics, 1979.
std::uint8_t otsu_threshold(const Histogram& histogram);

}  // namespace binarization
