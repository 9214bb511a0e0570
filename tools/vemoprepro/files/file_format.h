// What a file is, by its first bytes.
#pragma once

#include "files/seekable_file.h"

namespace tool::files {

enum class FileFormat { kTiff, kPng, kJpeg, kJpeg2000, kWebp, kGif, kBmp, kPnm };

// "TIFF", "JPEG 2000" and so on.
const char* name_of(FileFormat format);

// Throws FileError for all others, with what to do about those that hold pages too.
FileFormat format_of(const SeekableFile& file);

}  // namespace tool::files
