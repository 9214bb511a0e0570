// Binarization by the statistics of the grey values beside edges.
//
// Use: binarize_by_sobel_statistics(grey, {.delta1 = 40, .delta2 = 32, ...}, page).
#pragma once

#include <cstdint>

#include "common/views.h"

namespace binarization {

struct SobelStatistics {
    std::uint8_t delta1 = 40;  // gradient of an edge pixel: 3 * delta1 + 20 on the scale of the
                               // undivided Sobel responses
    std::uint8_t delta2 = 32;  // difference of greys around it that an edge pixel has at least
    std::uint8_t black1 = 0;   // grey level up to which a block without edges is a dark area
    std::uint8_t black2 = 0;   // lowest threshold of any block
    int sigma = 0;             // -128 .. 127: weight of the deviation, in 128ths
};

// A pixel becomes black where it is darker than the threshold of its 4 x 4 block. Pages of less
// than 13 rows or columns are binarized by Otsu's threshold.
//
// `page` has the size of `grey` and the stride bitonal_stride(width); every byte of it is written,
// the padding bits with 0. It is cleared before anything is allocated, so it is white when this
// throws.
void binarize_by_sobel_statistics(const common::GreyView& grey, const SobelStatistics& parameters,
                                  const common::MutableBitonalView& page);

}  // namespace binarization
