// Rows of 32-bit words, as decoders deliver colours: red, green, blue and alpha from the top.
#pragma once

#include <cstdint>

#include "page/page.h"

namespace tool::files {

// channels: 1 for a grey, 3 for a colour, 4 for one with alpha.
constexpr std::uint32_t colour_word(const unsigned char* pixel, int channels) {
    const auto part = [pixel](int i) { return std::uint32_t{pixel[i]}; };
    return part(0) << 24 | part(channels > 1 ? 1 : 0) << 16 | part(channels > 1 ? 2 : 0) << 8 |
           (channels == 4 ? part(3) : 0);
}

// Makes rows of words packed rows of a colour page, in their place. With alpha, transparent parts
// are laid on white paper. premultiplied: the colours are multiplied by their alpha already.
//
// Keep true: the page's block holds width x height words.
void pack_colour(Page& page, bool alpha, bool premultiplied);

}  // namespace tool::files
