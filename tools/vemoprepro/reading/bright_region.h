// Large bright regions of a small grey page, and the quadrilaterals that surround them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "page/page.h"
#include "reading/plane.h"

namespace tool::reading {

struct BrightRegion {
    std::vector<std::uint8_t> bright;  // of the page's pixels, row by row: 1 where it is bright
    std::int64_t area = 0;             // of the region, with what its rows surround
    std::int64_t next = 0;             // of the largest other region
    std::vector<Spot> hull;            // of the region, clockwise; a pixel is a square
};

// The largest region of greys from `least` on. Narrow dark things in it (print) are counted in,
// and bright things that are narrower than `narrowest` (fingers) do not hang on it.
BrightRegion largest_bright_region(const Page& grey, int least, int narrowest);

// The hull with sides taken off until four are left, each time the one by which it grows least: so
// a corner that is cut off comes back. None when it has no four sides.
std::optional<Quadrilateral> quadrilateral_around(const std::vector<Spot>& hull);

// The threshold that parts the greys best (N. Otsu, A threshold selection method from gray-level
// histograms, 1979), and the means of the greys below it and from it on.
struct TwoTones {
    int threshold;
    double dark, light;
};
TwoTones two_tones(const Page& grey);

}  // namespace tool::reading
