// One page in memory, as the library takes it.
//
// Use: files make pages, steps change them, a PageWriter writes them. make_page() gives one whose
// pixels are not set.
//
// Keep true: grey and colour rows are packed (stride = width x bytes per pixel); bitonal rows are
// whole 32-bit words, 1 = black, padding bits 0.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "page/resolution.h"

namespace tool {

enum class PageKind { kBitonal, kGrey, kColour };

// "bitonal", "grey" or "colour".
const char* name_of(PageKind kind);

// The longest side that every operation of the library takes, in pixels.
constexpr int kLongestSide = 32767;

// Bytes from one row to the next.
constexpr std::size_t stride_of(PageKind kind, int width) {
    const auto pixels = static_cast<std::size_t>(width);
    if (kind == PageKind::kBitonal) return (pixels + 31) / 32 * 4;
    return kind == PageKind::kGrey ? pixels : pixels * 3;
}

// A decoded page stays in the block that the decoder allocated, hence malloc and free.
struct FreeBlock {
    void operator()(unsigned char* block) const { std::free(block); }
};
using PixelBlock = std::unique_ptr<unsigned char[], FreeBlock>;

// Throws std::bad_alloc.
PixelBlock allocate_pixels(std::size_t size);

struct Page {
    PageKind kind = PageKind::kBitonal;
    int width = 0;
    int height = 0;
    PixelBlock bytes;
    Resolution dpi;         // as files say it; the output's as well
    Resolution scale;       // what lengths on paper are scaled by; 0 until it is settled
    int quarter_turns = 0;  // clockwise, 0 .. 3, that bring the page upright, as the file asks for

    std::size_t stride() const { return stride_of(kind, width); }
    std::size_t size() const { return stride() * static_cast<std::size_t>(height); }
    unsigned char* row(int y) const { return bytes.get() + stride() * static_cast<std::size_t>(y); }
};

// A page without its pixels.
struct PageShape {
    PageKind kind = PageKind::kBitonal;
    int width = 0;
    int height = 0;
    Resolution dpi;
};
PageShape shape_of(const Page& page);
// "colour, 2480 x 3508 pixels"
std::string describe_size(const PageShape& shape);
// "colour, 2480 x 3508 pixels, 300 dpi"
std::string describe(const PageShape& shape);

// A page whose pixels are not set. Its scale is its resolution.
Page make_page(PageKind kind, int width, int height, Resolution dpi);
// The same for one of the size, the resolution and the scale of another page.
Page make_page_like(const Page& page, PageKind kind);
// A bitonal one without ink.
Page blank_page_like(const Page& page);
Page copy_of(const Page& page);

// Makes the bits behind the rows of a bitonal page 0.
void clear_padding(Page& bits);

// An upright rectangle of a page, in pixels.
struct Box {
    int x, y, width, height;
};
// All of the page.
Box box_of(const Page& page);

// What a page does not allow to be done with it.
class PageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace tool
