// Print that is taken for a part of the dark border around a page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Whether something is printed where the mask of a border is set. Then that is no border but paper
// in the dark. Of the same size.
bool covers_print(const Page& mask, const Page& grey);

}  // namespace tool::reading
