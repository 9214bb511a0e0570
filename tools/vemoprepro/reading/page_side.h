// One side of the page on a photograph: a straight step from light to dark.
#pragma once

#include <optional>
#include <string>

#include "page/page.h"
#include "reading/plane.h"

namespace tool::reading {

struct PageSide {
    Spot from, to;    // clockwise around the page: the page lies to the right
    double step = 0;  // the usual difference of the greys on both sides of it
};

// The line along the sharpest step near the one from `from` to `to`, on a small grey page.
// `doubt` receives why there is none.
std::optional<PageSide> fit_side(const Page& grey, Spot from, Spot to, std::string& doubt);

// Whether the light on this side and the dark on the other meet all along it, beyond the width of a
// shadow or a rule.
bool is_seen(const Page& grey, const PageSide& side);

// Whether the step goes on beyond an end: then there is no corner, but a shadow that lies on a
// longer page.
bool goes_on(const Page& grey, const PageSide& side);

}  // namespace tool::reading
