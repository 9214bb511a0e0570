// Skew of a grey or colour page that is read row by row.
#pragma once

#include "deskew/skew_search.h"
#include "grey/source.h"

namespace deskew {

// A page that a reader delivers; source.image is not looked at.
struct SourcePage {
    grey::Source source;
    int height = 0;  // rows
};

// Measures how far the text of `page` is turned. The page is at least kLeastSide pixels high and
// wide. It is read twice from the top, first its whole pairs of rows, then its whole sixteens; one
// row and the sums of one direction are held at a time. Up to 15 pixels at the end of a row and 15
// rows at the end of the page are not looked at. Throws std::bad_alloc and what the reader throws.
SkewEstimate estimate_colour_skew(const SourcePage& page);

// The same with the search traced into "estimate_skew_of_color_image.log", made anew in the folder;
// null is the current one. Throws when the file cannot be made, before the reader is called.
SkewEstimate trace_colour_skew(const SourcePage& page, const char* folder);

}  // namespace deskew
