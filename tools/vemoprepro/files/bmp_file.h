// BMP files: bits, palettes and colours of 16, 24 and 32 bits, as they are or by masks.
#pragma once

#include <optional>

#include "files/page_place.h"
#include "files/seekable_file.h"
#include "page/page.h"

namespace tool::files {

// None when the file is damaged or ends early. Throws FileError for the compressed kinds.
std::optional<PagePlace> bmp_page(const SeekableFile& file);

// The page as a colour page. None when the file ends early.
//
// Keep true: bmp_page() found a page of sides of at most kLongestSide.
std::optional<Page> read_bmp(const SeekableFile& file);

}  // namespace tool::files
