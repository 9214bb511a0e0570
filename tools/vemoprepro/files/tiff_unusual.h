// TIFF pages of shapes that the general decoder refuses or gets wrong: tiles, a plane for each
// colour, inverted greys of 2, 4 or 16 bits, greys with alpha, colours with a sample that is not
// said to be alpha, palettes of 8-bit values.
#pragma once

#include <optional>
#include <string>

#include "files/tiff_file.h"

namespace tool::files {

// Why pages of this kind are not read by any of the decoders; empty when they may be.
std::string unread_kind(TIFF* tiff);

// Reads the current page. None for every other shape. Errors are for TiffErrors to tell; the page
// may then be without pixels.
//
// Keep true: unread_kind() found nothing; the file was opened as TiffAccess::kMapped, since else
// libtiff refuses tiles that are not compressed; no side is longer than kLongestSide.
std::optional<Page> read_unusual_tiff(TIFF* tiff);

}  // namespace tool::files
