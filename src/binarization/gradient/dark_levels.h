// The dark levels of the gradient method: settings in which 128 stands for the white of the page
// become grey levels of this page.
#pragma once

#include <cstdint>

#include "binarization/otsu.h"
#include "common/views.h"

namespace binarization {

struct DarkLevels {
    std::uint8_t black1 = 0;  // below this a dark area is filled; 0 switches both off
    std::uint8_t black2 = 0;  // the lowest threshold that a block may have
};

// The settings on the scale of the page. The whole image is looked at, and the image without its
// outer twelfth on each side, whose darkness is often the scanner's and not the paper's.
DarkLevels page_levels(const common::GreyView& grey, const DarkLevels& settings);

}  // namespace binarization
