#include "files/pix.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "files/word_rows.h"

namespace tool::files {
namespace {

// write(&bytes, &size): gives a block of its own, and 0 when it is done.
template <class Write>
std::string file_made_by(Write write) {
    l_uint8* bytes = nullptr;
    std::size_t size = 0;
    const bool failed = write(&bytes, &size) != 0;
    const std::unique_ptr<l_uint8, void (*)(void*)> owner(bytes, std::free);
    if (failed) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(bytes), size};
}

}  // namespace

PixOwner make_pix(int width, int height, int depth) {
    PixOwner image(pixCreate(width, height, depth));
    if (!image) throw std::bad_alloc();
    return image;
}

PixOwner pix_of(const unsigned char* pixels, int width, int height, int channels) {
    PixOwner image = make_pix(width, height, channels == 1 ? 8 : 32);
    if (channels == 4) pixSetSpp(image.get(), 4);
    const auto row_size = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    l_uint32* line = pixGetData(image.get());
    for (int y = 0; y < height; ++y, line += pixGetWpl(image.get()), pixels += row_size) {
        if (channels == 1) {
            std::memcpy(line, pixels, row_size);
            continue;
        }
        const unsigned char* pixel = pixels;
        for (int x = 0; x < width; ++x, pixel += channels) line[x] = colour_word(pixel, channels);
    }
    if (channels == 1) pixEndianByteSwap(image.get());
    return image;
}

PixOwner pix_of(const Page& page) {
    if (page.kind != PageKind::kBitonal) {
        return pix_of(page.bytes.get(), page.width, page.height,
                      page.kind == PageKind::kGrey ? 1 : 3);
    }
    PixOwner image = make_pix(page.width, page.height, 1);
    std::memcpy(pixGetData(image.get()), page.bytes.get(), page.size());
    pixEndianByteSwap(image.get());
    return image;
}

std::string png_of(PIX* image) {
    return file_made_by(
        [&](l_uint8** bytes, std::size_t* size) { return pixWriteMemPng(bytes, size, image, 0); });
}

std::string jpeg_of(PIX* image, int quality) {
    return file_made_by([&](l_uint8** bytes, std::size_t* size) {
        return pixWriteMemJpeg(bytes, size, image, quality, 0);
    });
}

}  // namespace tool::files
