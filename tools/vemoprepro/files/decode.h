// From an image file's bytes to a Page.
#pragma once

#include <string>

#include "files/pix.h"
#include "files/seekable_file.h"
#include "page/page.h"

namespace tool::files {

// What a decoder made of a page: no image, and perhaps the reason, when the file is damaged.
struct Decoded {
    PixOwner image = nullptr;
    std::string reason = {};
    // The colours are multiplied by the alpha channel already (TIFF) or not.
    bool premultiplied = false;
};

// Of the directory there.
Decoded decode_tiff(const SeekableFile& file, std::size_t directory);

// The image as a page of the least kind, oriented by the tag (see orientation.h). Transparent parts
// lie on white paper; 16 bits become 8. The pixels stay in the decoder's block wherever they can.
Page page_of(Decoded decoded, int orientation_tag);

}  // namespace tool::files
