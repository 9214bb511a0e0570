// JPEG 2000 files, and bare codestreams: greys, and colours with or without alpha.
#pragma once

#include <optional>

#include "files/decode.h"
#include "files/page_place.h"
#include "files/seekable_file.h"

namespace tool::files {

// None when the file is damaged. Throws FileError for kinds that are not read, and for files that
// ask for too much: the decoder needs 16 bytes for each pixel in any case, and something for each
// tile, block and layer.
std::optional<PagePlace> jpeg2000_page(const SeekableFile& file);
Decoded decode_jpeg2000(const SeekableFile& file);

}  // namespace tool::files
