// Rows are packed from the first to the last. The new place of a pixel never lies behind its old
// one, so nothing is written over that is still to be read.
#include "files/word_rows.h"

#include <array>
#include <boost/endian/conversion.hpp>
#include <cstring>

namespace tool::files {
namespace {

std::uint8_t over_white(std::uint32_t value, std::uint32_t alpha, bool premultiplied) {
    const std::uint32_t paper = 255 - alpha;
    if (!premultiplied) value = (value * alpha + 127) / 255;
    return static_cast<std::uint8_t>(value + paper > 255 ? 255 : value + paper);
}

void lay_on_white(unsigned char* pixel, std::uint32_t alpha, bool premultiplied) {
    if (alpha == 255) return;
    for (int i = 0; i < 3; ++i) pixel[i] = over_white(pixel[i], alpha, premultiplied);
}

// Four words as three, of which the first byte is the highest.
void pack_four(const unsigned char* words, unsigned char* out) {
    std::array<std::uint32_t, 4> four;
    std::memcpy(four.data(), words, sizeof four);
    const auto [a, b, c, d] = four;
    boost::endian::store_big_u32(out, (a & 0xFFFFFF00) | b >> 24);
    boost::endian::store_big_u32(out + 4, (b << 8 & 0xFFFF0000) | c >> 16);
    boost::endian::store_big_u32(out + 8, (c << 16 & 0xFF000000) | d >> 8);
}

// Packs one row of words into three bytes per pixel.
void pack_colour_row(const unsigned char* words, int width, bool alpha, bool premultiplied,
                     unsigned char* out) {
    int x = 0;
    for (; !alpha && x + 4 <= width; x += 4, words += 16, out += 12) pack_four(words, out);
    for (; x < width; ++x, words += 4, out += 3) {
        std::uint32_t word;
        std::memcpy(&word, words, 4);
        out[0] = static_cast<unsigned char>(word >> 24);
        out[1] = static_cast<unsigned char>(word >> 16);
        out[2] = static_cast<unsigned char>(word >> 8);
        if (alpha) lay_on_white(out, word & 255, premultiplied);
    }
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

}  // namespace tool::files
