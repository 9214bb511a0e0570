// Handing pages to the library's binarizations, which read them row by row.
#pragma once

#include "page/page.h"

namespace tool {

// The grey page that the library binarizes a colour page from. Taking it beforehand lets go of the
// colour page early and leaves the greys at hand.
Page grey_of(const Page& page);

}  // namespace tool
