// Print that is much lighter than the rest of its page.
#pragma once

#include "page/page.h"
#include "reading/block_depths.h"

namespace tool::reading {

// The threshold of the rest of a page can leave light print out. Where bits, made from the grey
// page, are as good as blank, this adds what is there by a threshold of its own, if it is as sharp
// as the print of the page: what shows through from the other side is not, nor are stains.
void add_light_print(Page& bits, const Page& grey, const PageDepths& depths);

}  // namespace tool::reading
