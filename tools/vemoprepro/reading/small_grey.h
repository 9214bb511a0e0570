// A page on few pixels, as greys.
#pragma once

#include "page/page.h"

namespace tool::reading {

// The mean of squares of `by` pixels a side, 1 .. 255; what does not fill a square is left out. Of
// a page of any kind.
Page small_grey(const Page& page, int by);

}  // namespace tool::reading
