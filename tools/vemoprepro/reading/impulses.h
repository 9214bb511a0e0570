// Salt and pepper on a grey page: pixels that differ by far from the median of the 3 x 3 pixels
// around them.
//
// Use: sample_impulses() tells whether a page is full of them; remove_impulses() takes them off,
// and a second time pairs of them, too.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Both from 0 to 1. Thin strokes look like impulses, but leave the paper between them free.
struct ImpulseSample {
    double share = 0;      // of the pixels that are impulses
    double free_runs = 1;  // of runs of 128 pixels in a row that have none
};

// Of some rows of the page.
ImpulseSample sample_impulses(const Page& grey);

// Gives impulses the median of their neighbourhood. Pixels on the edge of the page are kept.
void remove_impulses(Page& grey);

}  // namespace tool::reading
