// Salt and pepper all over a bitonal page.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Whether single black pixels lie nearly everywhere on the page, and not in pictures only.
bool is_strewn(const Page& bits);

// Takes single pixels and pairs of them off, black and white ones: each gets the majority of its
// neighbourhood. Strokes of one pixel go, too.
void remove_strewn_pixels(Page& bits);

}  // namespace tool::reading
