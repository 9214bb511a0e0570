// The pages of a TIFF file, and the errors of its decoder.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "files/image_file.h"

namespace tool {

// True for the first bytes of a classic or a big TIFF file of either byte order.
bool starts_as_tiff(std::FILE* file);

// Keeps the decoder's errors, thread by thread, from now on.
void collect_tiff_errors();

// The errors of this thread since the object was made.
class TiffErrors {
  public:
    TiffErrors();
    // The first error; empty when there was none.
    const std::string& first() const;
    // The system's error number at the first error; 0 when there was none.
    int system_error() const;
};

// The offsets and sizes of all pages, thumbnails left out. Empty when the chain of pages is
// damaged. One walk along the chain: reading every page by its offset afterwards is linear in their
// number.
std::vector<PagePlace> list_tiff_pages(const std::string& path);

// Reads a page of packed 8-bit grey or red, green, blue rows, by far the most common shape of large
// pages, straight into a Page: without the 4 bytes per pixel and the second copy that the general
// decoder needs. None for every other shape. Errors are for TiffErrors to tell.
std::optional<Page> read_packed_tiff(const std::string& path, std::size_t offset);

// Reads a page of a shape that the general decoder refuses or gets wrong: tiles, a plane for each
// colour, inverted greys of 2, 4 or 16 bits, palettes of 8-bit values. None for every other shape.
// Errors are for TiffErrors to tell.
std::optional<Page> read_unusual_tiff(const std::string& path, std::size_t offset);

}  // namespace tool
