// The pages of a TIFF file, and the most common shape of large ones.
#pragma once

#include <optional>
#include <vector>

#include "files/tiff_file.h"

namespace tool::files {

// The directories and sizes of all pages. Thumbnails and masks are left out where there is anything
// else. Empty when the chain of pages is damaged. Errors are for TiffErrors to tell.
std::vector<PagePlace> list_tiff_pages(const SeekableFile& file);

// Reads a page of packed rows straight into a Page: 8-bit greys or red, green, blue without the 4
// bytes per pixel and the second copy that the general decoder needs, or upright bits. None for
// every other shape. Errors are for TiffErrors to tell.
//
// Keep true: no side is longer than kLongestSide.
std::optional<Page> read_packed_tiff(TIFF* tiff);

}  // namespace tool::files
