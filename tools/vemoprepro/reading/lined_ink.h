// The ink that shows how the lines of a page lie.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Without specks, without large pieces that touch the edge, which are borders and the page's own
// edge, and without large dark pieces, which are pictures. small: from small_ink().
Page lined_ink(const Page& small);

}  // namespace tool::reading
