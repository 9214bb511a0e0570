// Lengths and areas on paper as pixels of a page.
//
// What is chosen by eye is chosen for 300 dots per inch and grows with the page's scale.
//
// Keep true: the page has a scale.
#pragma once

#include "page/page.h"

namespace tool {

// At least 1.
int scaled_length(const Page& page, double pixels_at_300);
int scaled_area(const Page& page, double pixels_at_300);

}  // namespace tool
