// The pages of a TIFF file, and the most common shape of large ones.
#pragma once

#include <cstdio>
#include <optional>
#include <vector>

#include "files/tiff_file.h"

namespace tool::files {

// True for the first bytes of a classic or a big TIFF file of either byte order.
bool starts_as_tiff(std::FILE* file);

// The offsets and sizes of all pages from the current one on, thumbnails left out. The
// chain is followed once: reading every page by its offset afterwards is linear in their number.
// Errors in the chain are for TiffErrors to tell.
std::vector<PagePlace> list_tiff_pages(TIFF* tiff);

// Reads a page of packed 8-bit grey or red, green, blue rows straight into a Page: without the 4
// bytes per pixel and the second copy that the general decoder needs. None for every other shape.
// Errors are for TiffErrors to tell.
//
// Keep true: no side is longer than kLongestSide.
std::optional<Page> read_packed_tiff(TIFF* tiff);

}  // namespace tool::files
