// Leptonica keeps pixels in 32-bit words of the machine's order: 1 bit per pixel with 1 = black, 8
// bits, or 32 bits as red, green, blue, alpha from the top. All three are brought into the
// library's shape within the decoded block, from the first row to the last, since the new place of
// a pixel never lies behind its old one; so a colour page costs 4 bytes per pixel while it is
// decoded and 3 afterwards.
#include "files/decode.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "files/orientation.h"
#include "files/png_colour_key.h"
#include "files/tiff_pages.h"
#include "page/ink.h"

namespace tool {
namespace {

Decoded decoded_by(PIX* image) {
    return {PixOwner(image), {}, false};
}

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

// Gives the unused end of the block back.
void shrink(Page& page) {
    unsigned char* whole = page.bytes.release();
    void* smaller = std::realloc(whole, page.size());
    page.bytes.reset(smaller != nullptr ? static_cast<unsigned char*>(smaller) : whole);
}

std::uint8_t over_white(std::uint32_t value, std::uint32_t alpha, bool premultiplied) {
    const std::uint32_t paper = 255 - alpha;
    if (!premultiplied) value = (value * alpha + 127) / 255;
    return static_cast<std::uint8_t>(value + paper > 255 ? 255 : value + paper);
}

void lay_on_white(unsigned char* pixel, std::uint32_t alpha, bool premultiplied) {
    if (alpha == 255) return;
    for (int i = 0; i < 3; ++i) pixel[i] = over_white(pixel[i], alpha, premultiplied);
}

// Packs one row of words into three bytes per pixel.
void pack_colour_row(const unsigned char* words, int width, bool alpha, bool premultiplied,
                     unsigned char* out) {
    for (int x = 0; x < width; ++x, words += 4, out += 3) {
        std::uint32_t word;
        std::memcpy(&word, words, 4);
        out[0] = static_cast<unsigned char>(word >> 24);
        out[1] = static_cast<unsigned char>(word >> 16);
        out[2] = static_cast<unsigned char>(word >> 8);
        if (alpha) lay_on_white(out, word & 255, premultiplied);
    }
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

bool without_colour(const Page& page) {
    const std::size_t count = page.size() / 3;
    const unsigned char* pixel = page.bytes.get();
    for (std::size_t i = 0; i < count; ++i, pixel += 3) {
        if (pixel[0] != pixel[1] || pixel[1] != pixel[2]) return false;
    }
    return true;
}

void keep_one_byte_in_three(Page& page) {
    const std::size_t count = page.size() / 3;
    unsigned char* bytes = page.bytes.get();
    for (std::size_t i = 0; i < count; ++i) bytes[i] = bytes[3 * i];
    page.kind = PageKind::kGrey;
}

bool only_black_and_white(const Page& page) {
    const unsigned char* bytes = page.bytes.get();
    const std::size_t size = page.size();
    for (std::size_t i = 0; i < size; ++i) {
        if (static_cast<unsigned char>(bytes[i] + 1) > 1) return false;
    }
    return true;
}

void pack_bits(Page& page) {
    Page bits = make_page_like(page, PageKind::kBitonal);
    std::memset(bits.bytes.get(), 0, bits.size());
    for (int y = 0; y < page.height; ++y) {
        const unsigned char* grey = page.row(y);
        unsigned char* row = bits.row(y);
        for (int x = 0; x < page.width; ++x) {
            if (grey[x] == 0) set_ink(row, x);
        }
    }
    page.kind = PageKind::kBitonal;
    page.bytes = std::move(bits.bytes);
}

}  // namespace

void pack_colour(Page& page, bool alpha, bool premultiplied) {
    const std::size_t stride = static_cast<std::size_t>(page.width) * 4;
    page.kind = PageKind::kColour;
    for (int y = 0; y < page.height; ++y) {
        pack_colour_row(page.bytes.get() + stride * static_cast<std::size_t>(y), page.width, alpha,
                        premultiplied, page.row(y));
    }
}

void reduce_kind(Page& page) {
    if (page.kind == PageKind::kColour && without_colour(page)) keep_one_byte_in_three(page);
    if (page.kind == PageKind::kGrey && only_black_and_white(page)) pack_bits(page);
    shrink(page);
}

Decoded decode_png(std::FILE* file) {
    const std::optional<PngColourKey> key = find_colour_key(file);
    std::rewind(file);
    if (!key) return decoded_by(pixReadStreamPng(file));
    const std::vector<std::uint8_t> bytes = without_colour_key(file, *key);
    Decoded decoded =
        decoded_by(bytes.empty() ? nullptr : pixReadMemPng(bytes.data(), bytes.size()));
    if (decoded.image) paint_colour_key(decoded.image.get(), *key);
    return decoded;
}

Decoded decode_jpeg(std::FILE* file) {
    l_int32 warnings = 0;
    Decoded decoded =
        decoded_by(pixReadStreamJpeg(file, 0, 1, &warnings, L_JPEG_CONTINUE_WITH_BAD_DATA));
    if (warnings > 0) decoded.image.reset();
    return decoded;
}

Decoded decode_pnm(std::FILE* file) {
    return decoded_by(pixReadStreamPnm(file));
}

Decoded decode_tiff(const std::string& path, std::size_t offset) {
    const TiffErrors errors;
    Decoded decoded = decoded_by(pixReadFromMultipageTiff(path.c_str(), &offset));
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

}  // namespace tool
