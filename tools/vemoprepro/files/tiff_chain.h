// The chain of directories of a TIFF file, one for each page, as it is before libtiff sees any.
//
// libtiff finds a page only by following the chain from the first one on, which takes quadratic
// time for a file of many pages, and so does a directory of many tags. So the chain is followed
// here, once, and libtiff is shown the file as if it began with the page that is wanted.
#pragma once

#include <cstddef>
#include <vector>

#include "files/file_view.h"

namespace tool::files {

// True for the first bytes of a classic or a big TIFF file of either byte order.
bool starts_as_tiff(const SeekableFile& file);

// Where the directories are. Empty when the chain is damaged; why is for TiffErrors to tell.
std::vector<std::size_t> list_directories(const SeekableFile& file);

// What makes the directory there the first one. The file starts as TIFF.
Patch first_directory(const SeekableFile& file, std::size_t directory);

}  // namespace tool::files
