// Undoing halftone screens and ordered dither in a grey page.
#pragma once

#include "common/views.h"

namespace grey {

// Replaces the screened parts of the page by the tones that the screen stands for, in place.
// Everything else keeps its bytes; a page without a screen keeps all of them.
// parameter: 1 .. 251. resolution: dots per inch. Throws std::bad_alloc before anything is changed.
void undither(const common::MutableGreyView& grey, int parameter, int resolution);

}  // namespace grey
