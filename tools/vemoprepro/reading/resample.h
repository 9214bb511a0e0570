// Grey pages at other places than their pixels': turned by any angle, or at twice the size.
//
// Between the pixels a cubic runs (R. Keys, Cubic convolution interpolation for digital image
// processing, 1981), in whole numbers, so that a page comes out the same on every machine.
#pragma once

#include "page/page.h"

namespace tool::reading {

// A grey page of twice the size and resolution.
Page doubled(const Page& grey);

// A grey page turned about its centre so that lines which rise to the right by `rise` pixels over
// `run` lie level. What the page does not cover gets the grey of its paper, which leaves no edge
// there. width, height: of the result.
Page levelled(const Page& grey, int rise, int run, int width, int height);

}  // namespace tool::reading
