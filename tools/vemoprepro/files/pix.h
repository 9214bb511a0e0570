// Leptonica's images: owned, made from packed pixels, and as the bytes of PNG and JPEG files.
#pragma once

#include <leptonica/allheaders.h>

#include <memory>
#include <string>

#include "page/page.h"

namespace tool::files {

struct DestroyPix {
    void operator()(PIX* image) const { pixDestroy(&image); }
};
using PixOwner = std::unique_ptr<PIX, DestroyPix>;

// An image without its pixels. Throws std::bad_alloc.
PixOwner make_pix(int width, int height, int depth);

// channels: 1 for greys, 3 for colours, 4 for colours with alpha. Throws std::bad_alloc.
PixOwner pix_of(const unsigned char* pixels, int width, int height, int channels);
PixOwner pix_of(const Page& page);

// The bytes of a file. Throw std::bad_alloc.
std::string png_of(PIX* image);
std::string jpeg_of(PIX* image, int quality);

}  // namespace tool::files
