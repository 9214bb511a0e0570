// TIFF pages of shapes that the general decoder refuses or gets wrong: tiles, a plane for each
// colour, inverted greys of 2, 4 or 16 bits, palettes of 8-bit values.
#pragma once

#include <optional>

#include "files/tiff_file.h"

namespace tool::files {

// Reads the current page. None for every other shape. Errors are for TiffErrors to tell; the page
// may then be without pixels.
//
// Keep true: the file was opened as TiffAccess::kMapped, since else libtiff refuses tiles that are
// not compressed; no side is longer than kLongestSide.
std::optional<Page> read_unusual_tiff(TIFF* tiff);

}  // namespace tool::files
