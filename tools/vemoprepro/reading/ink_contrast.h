// How strong the ink of a grey page is.
#pragma once

#include <vector>

#include "page/page.h"

namespace tool::reading {

// Of the blocks of a page row by row, without those at the right and the bottom that are not whole.
struct Contrasts {
    int side, across, down;  // of a block in pixels, and how many blocks
    std::vector<int> values;
};

// The page has a resolution.
Contrasts contrasts_of(const Page& grey);

// How much darker than the paper the page's strong ink is: nine tenths of the places with ink have
// no more contrast. 0 without ink.
int ink_contrast(const Contrasts& contrasts);

}  // namespace tool::reading
