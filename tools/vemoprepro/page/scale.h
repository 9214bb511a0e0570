// Pages at another size.
#pragma once

#include "page/page.h"

namespace tool {

enum class Filter { kBilinear, kBicubic };

// The kind is kept; the resolution and the scale go along. Throws PageError for a side that is not
// 1 .. 32,767 pixels, std::bad_alloc.
void scale_page(Page& page, int width, int height, Filter filter);

}  // namespace tool
