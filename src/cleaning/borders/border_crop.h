// Cropping the dark border of a grey or colour page.
#pragma once

#include "cleaning/borders/border_growth.h"
#include "cleaning/borders/border_mask.h"

namespace cleaning {

// Paints the border white and returns the rectangle of the content. A page of fewer than
// kSmallestCropped rows or columns is left alone; its rectangle is 0, width, 0, height. Throws
// std::bad_alloc before it changes the page.
ContentBox crop_border(const BorderPage& page, const BorderLimits& limits);

}  // namespace cleaning
