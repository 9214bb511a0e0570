// Pages for tests of the program's pieces, drawn pixel by pixel.
#pragma once

#include <cstring>
#include <string>

#include "page/ink.h"
#include "page/page.h"

namespace tool {

// A grey page at 300 dots per inch of the greys that `grey_at(x, y)` gives.
template <class Greys>
Page grey_page(int width, int height, Greys grey_at) {
    Page page = make_page(PageKind::kGrey, width, height, {300, 300});
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) page.row(y)[x] = static_cast<unsigned char>(grey_at(x, y));
    }
    return page;
}

inline Page blank_bits(int width, int height) {
    Page page = make_page(PageKind::kBitonal, width, height, {300, 300});
    std::memset(page.bytes.get(), 0, page.size());
    return page;
}

// Ends exclusive.
inline void draw(Page& bits, int x0, int x1, int y0, int y1) {
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) set_ink(bits.row(y), x);
    }
}

inline bool same_pixels(const Page& one, const Page& other) {
    return one.width == other.width && one.height == other.height &&
           std::memcmp(one.bytes.get(), other.bytes.get(), one.size()) == 0;
}

// The bits as lines of text, for messages and for comparing.
inline std::string text_of(const Page& bits) {
    std::string text;
    for (int y = 0; y < bits.height; ++y) {
        for (int x = 0; x < bits.width; ++x) text += is_ink(bits, x, y) ? '#' : '.';
        text += '\n';
    }
    return text;
}

}  // namespace tool
