#include "report/encoded_picture.h"

#include "files/pix.h"

namespace tool::report {
namespace {

constexpr int kSmallQuality = 82;
// Strokes are judged by it.
constexpr int kFullQuality = 85;
// Of zlib, as Leptonica takes it: plus 10. Files of the usual level 6 take twice the time to make
// and are 3 % smaller.
constexpr int kPngLevel = 14;

EncodedPicture jpeg(const files::PixOwner& image, int quality, int width, int height) {
    return {"image/jpeg", ".jpg", files::jpeg_of(image.get(), quality), width, height};
}

EncodedPicture png(const files::PixOwner& image, int width, int height) {
    pixSetSpecial(image.get(), kPngLevel);
    return {"image/png", ".png", files::png_of(image.get()), width, height};
}

}  // namespace

EncodedPicture encode(const ScaledPicture& picture) {
    const files::PixOwner image =
        files::pix_of(picture.pixels.data(), picture.width, picture.height, picture.channels);
    const int width = picture.width * picture.factor, height = picture.height * picture.factor;
    const bool scan = picture.channels != 4 && picture.kind != PageKind::kBitonal;
    return scan ? jpeg(image, kSmallQuality, width, height) : png(image, width, height);
}

EncodedPicture encode(const Page& page) {
    const files::PixOwner image = files::pix_of(page);
    return page.kind == PageKind::kBitonal ? png(image, page.width, page.height)
                                           : jpeg(image, kFullQuality, page.width, page.height);
}

EncodedPicture encode_ink(const Page& bits, Colour colour) {
    const files::PixOwner image = files::pix_of(bits);
    PIXCMAP* colours = pixcmapCreate(1);
    pixcmapAddRGBA(colours, 255, 255, 255, 0);
    pixcmapAddRGBA(colours, colour.red, colour.green, colour.blue, 255);
    pixSetColormap(image.get(), colours);
    return png(image, bits.width, bits.height);
}

}  // namespace tool::report
