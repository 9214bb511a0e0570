// What decoding a TIFF page takes beside the page.
#pragma once

#include <tiffio.h>

#include <string>

namespace tool::files {

// Strips and tiles are decoded whole, and a file may state any size for them. What is wrong with
// them when they are out of proportion to the page, which the TIFF is at; else empty.
std::string excessive_blocks(TIFF* tiff);

}  // namespace tool::files
