// A page on a photograph, seen at an angle.
#pragma once

#include <array>

#include "page/page.h"

namespace tool {

struct Corner {
    int x, y;
};
using Corners = std::array<Corner, 4>;

// Clockwise from the upper left one, whatever order they came in.
Corners in_order(Corners corners);

// What lies between the corners becomes the page, upright and as large as its sides are long. The
// kind is kept. corners: in their order. Throws PageError when one lies outside of the page or when
// they are no quadrilateral that a page can look like.
void rectify(Page& page, const Corners& corners);

}  // namespace tool
