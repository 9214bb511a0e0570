// Pictures as the bytes of files: scans become JPEGs, drawings (bitonal pages, marks) PNGs.
#pragma once

#include <string>

#include "report/scaled_picture.h"

namespace tool::report {

struct Colour {
    std::uint8_t red, green, blue;
};

struct EncodedPicture {
    const char* type = "image/png";
    const char* extension = ".png";
    std::string bytes;
    // What the picture covers, in pixels of the page: the page, filled up to whole squares.
    int covered_width = 0;
    int covered_height = 0;
};

EncodedPicture encode(const ScaledPicture& picture);
// At full size.
EncodedPicture encode(const Page& page);
// At full size: the ink of a bitonal page in a colour, see-through elsewhere.
EncodedPicture encode_ink(const Page& bits, Colour colour);

}  // namespace tool::report
