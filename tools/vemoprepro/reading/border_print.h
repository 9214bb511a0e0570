// Print that is taken for a part of the dark border around a page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Whether something is printed where `cropped`, a page of the same size, has been painted white.
// Then it was no border but paper in the dark. Both are grey.
bool print_was_painted(const Page& grey, const Page& cropped);

}  // namespace tool::reading
