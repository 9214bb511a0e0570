// PNG files.
#pragma once

#include <optional>

#include "files/decode.h"
#include "files/page_place.h"
#include "files/seekable_file.h"

namespace tool::files {

// None when the file is damaged.
std::optional<PagePlace> png_page(const SeekableFile& file);
Decoded decode_png(const SeekableFile& file);

}  // namespace tool::files
