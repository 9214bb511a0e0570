// JPEG files.
#pragma once

#include <optional>

#include "files/decode.h"
#include "files/page_place.h"
#include "files/seekable_file.h"

namespace tool::files {

// None when the file is damaged.
std::optional<PagePlace> jpeg_page(const SeekableFile& file);
// Throws FileError for a file of very many scans.
Decoded decode_jpeg(const SeekableFile& file);

}  // namespace tool::files
