// Turns of whole pages. The kind of the page is kept.
#pragma once

#include "page/background.h"
#include "page/page.h"

namespace tool {

// By right angles: a quarter turn swaps the page's sides and its resolutions.
// quarter_turns: clockwise, 1 .. 3. Throws PageError when the library refuses.
void turn(Page& page, int quarter_turns);

// By any other angle, about the centre; the page grows to hold its corners. background: as
// background_of() gives it. Throws PageError when the page would be too large.
void turn_by_degrees(Page& page, double clockwise, const PixelColour& background);

}  // namespace tool
