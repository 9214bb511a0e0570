// Cropping the dark border of a grey or colour page.
#pragma once

#include <optional>

#include "cleaning/borders/border_growth.h"
#include "common/rectangle.h"

namespace cleaning {

// Paints the border white and returns the rectangle of the content; nothing for a page of fewer
// than kSmallestCropped (border_mask.h) rows or columns, which is left as it is. Throws
// std::bad_alloc before it changes the page.
std::optional<common::Rectangle> crop_border(const BorderPage& page, const BorderLimits& limits);

}  // namespace cleaning
