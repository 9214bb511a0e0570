// Components of a few pixels, found without labelling the page: nearly all of its ink belongs to
// larger components and is passed over a word at a time.
//
// Keep true: max_area <= kMaxSpeckArea. Both throw std::bad_alloc before they change a page.
#pragma once

#include <cstdint>

#include "common/views.h"

namespace cleaning {

// So many connected pixels always fit into the 64 columns of a machine word, to both sides of any
// of them.
constexpr std::int32_t kMaxSpeckArea = 31;

// Erases the 8-connected components of at most `max_area` pixels.
void erase_specks(common::MutableBitonalView page, std::int32_t max_area);

// Moves the components of `specks` that have a pixel in common with `near` to the page; the others
// are left in `specks`. The three pages have the same size, and no component of `specks` has more
// than kMaxSpeckArea pixels.
void restore_specks(common::MutableBitonalView specks, common::BitonalView near,
                    common::MutableBitonalView page);

}  // namespace cleaning
