// The orientation tag in the EXIF segment of a JPEG file.
#pragma once

#include <cstdio>

namespace tool::files {

// Reads the file from its start; upright when there is no tag (see orientation.h). What is not
// JPEG, or ends early, has none.
int jpeg_orientation(std::FILE* file);

}  // namespace tool::files
