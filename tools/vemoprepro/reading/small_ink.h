// A page in black and white on few pixels, to measure by: how its lines lie is as clear on a page
// of 150 dots per inch as on one of 600.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Bitonal, whatever the kind of the page; its sides are those of the page divided by one whole
// number, which is 1 for small pages. Ink is what is darker than its neighbourhood.
Page small_ink(const Page& page);

}  // namespace tool::reading
