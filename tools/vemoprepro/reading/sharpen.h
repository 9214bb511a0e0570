// The blur of a coarse scan.
#pragma once

#include "page/page.h"

namespace tool::reading {

// Undoes some of the blur of a grey page. On a coarse page fine strokes are no wider than the blur
// and much paler than the thick ones, so that one threshold for both would take them off. Pixels on
// the edge of the page are kept.
void sharpen(Page& grey);

}  // namespace tool::reading
