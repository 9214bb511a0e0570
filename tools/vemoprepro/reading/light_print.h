// Print that is much lighter than the rest of its page.
#pragma once

#include <functional>

#include "page/page.h"
#include "reading/ink_contrast.h"

namespace tool::reading {

// Adds what the page by its edges shows where bits are as good as blank: threshold and print of the
// rest of a page can leave light print out. That page, a bitonal one of the same size, is made only
// when contrasts say that it can show something there: contrasts of so much or more.
void add_light_print(Page& bits, const Contrasts& contrasts, int least,
                     const std::function<Page()>& make_by_edges);

}  // namespace tool::reading
