// Components of a few pixels, found without labelling the page: nearly all ink of a page belongs to
// larger ones and is passed over by the word.
//
// Keep true: max_area <= kMaxSpeckArea. Both throw std::bad_alloc before they change a page.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace cleaning {

// So many connected pixels fit into the 64 columns of a machine word however they lie.
constexpr std::int32_t kMaxSpeckArea = 31;

// Erases the 8-connected components of at most `max_area` pixels.
void erase_specks(common::MutableBitonalView page, std::int32_t max_area);

// Moves the components of `specks` that have a pixel in common with `near` to the page. All three
// have the same size. `specks` holds components of at most kMaxSpeckArea pixels; the others are
// left in it.
void restore_specks(common::MutableBitonalView specks, common::BitonalView near,
                    common::MutableBitonalView page);

}  // namespace cleaning
