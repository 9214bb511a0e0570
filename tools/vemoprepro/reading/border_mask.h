// The dark border around a page, as a mask: a bitonal page of the same size in which the pixels of
// the border are set.
//
// A border is thick. Neither rules that run into it nor letters that touch it belong to it, and it
// is not followed through them.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Borders start at greys below `dark` on the page's edge and go on through greys below `light` that
// differ by less than `step`.
struct BorderGreys {
    int dark, light, step;
};

// Both throw std::bad_alloc. The page of greys is at least 24 pixels a side.
Page border_of_bits(const Page& bits);
Page border_of_greys(const Page& grey, const BorderGreys& greys);

}  // namespace tool::reading
