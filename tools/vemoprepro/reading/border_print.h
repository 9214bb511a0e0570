// Print that is taken for a part of the dark border around a page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Whether something is printed where the mask of a border is set. Then that is no border but paper
// in the dark. Of the same size.
bool covers_print(const Page& mask, const Page& grey);

// The same of a bitonal page, on which such print is white. `letter`: the height of small letters.
bool covers_white_print(const Page& mask, const Page& bits, double letter);

}  // namespace tool::reading
