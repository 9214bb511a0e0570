// Binarization by one threshold for the whole region.
#pragma once

#include "common/views.h"
#include "grey/grey_preparation.h"
#include "grey/source.h"

namespace binarization {

// The threshold that stands for "choose it by Otsu's method".
constexpr std::uint8_t kAutomaticThreshold = 0;

// Black where the prepared grey value is below the threshold (strictly: the level that Otsu's
// method finds is itself white). `page` is region.height() rows of region.width() pixels at the
// stride bitonal_stride(width); every byte of it is written, the padding bits with 0. Throws before
// anything is written.
void binarize_by_threshold(const grey::Source& source, const grey::Region& region,
                           const grey::GreyOptions& options, std::uint8_t threshold,
                           const common::MutableBitonalView& page);

// The same for a grey image that is already there.
void binarize_by_threshold(const common::GreyView& grey, std::uint8_t threshold,
                           const common::MutableBitonalView& page);

}  // namespace binarization
