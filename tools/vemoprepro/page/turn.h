// Turns by right angles. The kind of the page is kept; a quarter turn swaps its sides and its
// resolutions.
#pragma once

#include "page/page.h"

namespace tool {

// quarter_turns: clockwise, 1 .. 3. Throws PageError when the library refuses.
void turn(Page& page, int quarter_turns);

}  // namespace tool
