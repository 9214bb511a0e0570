// Skew of a bitonal page.
#pragma once

#include "common/views.h"
#include "deskew/skew_search.h"

namespace deskew {

constexpr int kLeastSide = 32;  // pixels

// Measures how far the text of `page` is turned. The page is at least kLeastSide pixels high and
// wide; its stride is a multiple of 4 and holds the width. The bits of a last byte that is not
// whole are not looked at. Bytes of the stride beyond the width are not read, but widen the image
// whose size decides which sums count: a stride far beyond the width can change the confidence.
// Throws std::bad_alloc.
SkewEstimate estimate_bitonal_skew(const common::BitonalView& page);

// The same with the search traced into "estimate_skew_of_binary_image.log", made anew in the
// folder; null is the current one. Throws when the file cannot be made, before the page is looked
// at.
SkewEstimate trace_bitonal_skew(const common::BitonalView& page, const char* folder);

}  // namespace deskew
