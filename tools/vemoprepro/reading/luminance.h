// The grey page that a colour page is worked on as.
#pragma once

#include "page/page.h"

namespace tool::reading {

// The luminance that the library binarizes a colour page from. Throws std::bad_alloc.
Page grey_of(const Page& colour);

}  // namespace tool::reading
