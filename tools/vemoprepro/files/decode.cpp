// Leptonica keeps pixels in 32-bit words of the machine's order: 1 bit per pixel with 1 = black, 8
// bits, or 32 bits as red, green, blue, alpha from the top. All three are brought into the
// library's shape within the decoded block; so a colour page costs 4 bytes per pixel while it is
// decoded and 3 afterwards.
#include "files/decode.h"

#include <cstring>
#include <utility>

#include "files/file_view.h"
#include "files/least_kind.h"
#include "files/orientation.h"
#include "files/tiff_chain.h"
#include "files/tiff_file.h"
#include "files/word_rows.h"

namespace tool::files {
namespace {

// No colour map, and 1, 8 or 32 bits per pixel.
PixOwner plain_image(PixOwner image) {
    if (pixGetColormap(image.get()) != nullptr) {
        image.reset(pixRemoveColormap(image.get(), REMOVE_CMAP_BASED_ON_SRC));
    }
    if (!image) throw std::bad_alloc();
    const l_int32 depth = pixGetDepth(image.get());
    if (depth == 2 || depth == 4) image.reset(pixConvertTo8(image.get(), 0));
    if (depth == 16) image.reset(pixConvert16To8(image.get(), L_MS_BYTE));
    if (!image) throw std::bad_alloc();
    return image;
}

PixelBlock block_of(PIX* image) {
    return PixelBlock(reinterpret_cast<unsigned char*>(pixExtractData(image)));
}

void take_colour(Page& page, PIX* image, bool premultiplied) {
    const bool alpha = pixGetSpp(image) == 4;
    page.bytes = block_of(image);
    pack_colour(page, alpha, premultiplied);
}

void take_grey(Page& page, PIX* image) {
    pixEndianByteSwap(image);
    const std::size_t stride = static_cast<std::size_t>(pixGetWpl(image)) * 4;
    page.kind = PageKind::kGrey;
    page.bytes = block_of(image);
    for (int y = 1; y < page.height; ++y) {
        std::memmove(page.row(y), page.bytes.get() + stride * static_cast<std::size_t>(y),
                     page.stride());
    }
}

void take_bitonal(Page& page, PIX* image) {
    pixSetPadBits(image, 0);
    pixEndianByteSwap(image);
    page.kind = PageKind::kBitonal;
    page.bytes = block_of(image);
}

}  // namespace

Decoded decode_tiff(const SeekableFile& file, std::size_t directory) {
    const TiffErrors errors;
    const Stream stream = open_stream(file, first_directory(file, directory));
    Decoded decoded{PixOwner(pixReadStreamTiff(stream.get(), 0))};
    decoded.premultiplied = true;
    if (!errors.first().empty()) {
        decoded.image.reset();
        decoded.reason = errors.first();
    }
    return decoded;
}

Page page_of(Decoded decoded, int orientation_tag) {
    Page page;
    page.dpi = {pixGetXRes(decoded.image.get()), pixGetYRes(decoded.image.get())};
    PixOwner image = plain_image(std::move(decoded.image));
    page.width = pixGetWidth(image.get());
    page.height = pixGetHeight(image.get());
    switch (pixGetDepth(image.get())) {
        case 1:
            take_bitonal(page, image.get());
            break;
        case 8:
            take_grey(page, image.get());
            break;
        default:
            take_colour(page, image.get(), decoded.premultiplied);
            break;
    }
    image.reset();
    orient(page, orientation_tag);
    reduce_kind(page);
    return page;
}

}  // namespace tool::files
