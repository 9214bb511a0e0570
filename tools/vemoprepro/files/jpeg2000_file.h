// JPEG 2000 files, and bare codestreams: greys, and colours with or without alpha.
#pragma once

#include <optional>

#include "files/decode.h"
#include "files/page_place.h"
#include "files/seekable_file.h"

namespace tool::files {

// None when the file is damaged. Throws FileError for kinds that are not read, and for pages of
// more pixels than this format is read with: its decoder needs 16 bytes for each, and many times
// as much when a file asks for it.
std::optional<PagePlace> jpeg2000_page(const SeekableFile& file);
Decoded decode_jpeg2000(const SeekableFile& file);

}  // namespace tool::files
