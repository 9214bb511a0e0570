// The thick parts of a mask that hang on the page's edge.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Takes off the mask what is farther than `fringe` pixels from a part of the core that is at least
// `least` pixels thick in both directions and hangs on the page's edge through such parts only. The
// core is a part of the mask. Outside of the page all counts as core, so a strip along an edge is
// thick.
void keep_thick_at_edges(Page& mask, const Page& core, int least, int fringe);

}  // namespace tool::reading
