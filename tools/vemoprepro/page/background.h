// The colour of the places that a page does not cover after a turn.
#pragma once

#include <array>

#include "page/page.h"

namespace tool {

// Red, green and blue; of a grey page the first counts. Ink of a bitonal page is 0, paper 255.
using PixelColour = std::array<unsigned char, 3>;

constexpr PixelColour kWhite = {255, 255, 255};

struct Background {
    bool from_border = false;  // what most of the page's edge looks like
    PixelColour colour = kWhite;
};

// As a page of this kind shows it.
PixelColour background_of(const Page& page, const Background& background);

}  // namespace tool
