// GIF files of one picture; those of several are refused, since pages are no moving pictures.
#pragma once

#include <optional>

#include "files/decode.h"
#include "files/page_place.h"
#include "files/seekable_file.h"

namespace tool::files {

// None when the file is damaged. Throws FileError.
std::optional<PagePlace> gif_page(const SeekableFile& file);
Decoded decode_gif(const SeekableFile& file);

}  // namespace tool::files
