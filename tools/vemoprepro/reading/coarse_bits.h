// A page made smaller and bitonal for a quick look at what is on it.
#pragma once

#include "page/page.h"

namespace tool::reading {

struct CoarseBits {
    Page bits;
    double ink_share;  // of the area that is not plain paper
};

// A bitonal page whose sides are those of the page, halved so many times. The page has at least a
// pixel a side then.
//
// Of 2 x 2 pixels of a bitonal page two black ones make a black one. A grey page, or a colour page
// by its greens, becomes black where it is darker than the middle between the lightest and the
// darkest grey around; where these differ by little it is white, and plain paper.
CoarseBits coarse_bits(const Page& page, int halvings);

}  // namespace tool::reading
