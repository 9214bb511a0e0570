// Print that is much lighter than the rest of its page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Adds what the page by its edges shows where bits are as good as blank: threshold and print of the
// rest of a page can leave light print out. Both pages are bitonal and of one size.
void add_light_print(Page& bits, const Page& by_edges);

}  // namespace tool::reading
