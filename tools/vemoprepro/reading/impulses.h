// Salt and pepper on a grey page: pixels that differ by far from the median of the 3 x 3 pixels
// around them.
//
// Use: impulse_share() tells whether a page is full of them; remove_impulses() takes them off, and
// a second time pairs of them, too.
#pragma once

#include "page/page.h"

namespace tool::reading {

// From 0 to 1, of a sample of the page's pixels.
double impulse_share(const Page& grey);

// Gives impulses the median of their neighbourhood. Pixels on the edge of the page are kept.
void remove_impulses(Page& grey);

}  // namespace tool::reading
