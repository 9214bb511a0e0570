// WebP files of one picture; moving ones are refused.
#pragma once

#include <optional>

#include "files/decode.h"
#include "files/page_place.h"
#include "files/seekable_file.h"

namespace tool::files {

// None when the file is damaged. Throws FileError.
std::optional<PagePlace> webp_page(const SeekableFile& file);
Decoded decode_webp(const SeekableFile& file);

}  // namespace tool::files
