// One page in memory, as the library takes it.
//
// Use: ImageFile::read_page() makes pages, steps change them, a PageWriter writes them.
//
// Keep true: grey and colour rows are packed (stride = width x bytes per pixel); bitonal rows are
// whole 32-bit words, 1 = black, padding bits 0.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

namespace tool {

enum class PageKind { kBitonal, kGrey, kColour };

// "bitonal", "grey" or "colour".
inline const char* name_of(PageKind kind) {
    switch (kind) {
        case PageKind::kBitonal:
            return "bitonal";
        case PageKind::kGrey:
            return "grey";
        case PageKind::kColour:
            break;
    }
    return "colour";
}

struct FreeBlock {
    void operator()(unsigned char* block) const { std::free(block); }
};
// A decoded page stays in the block that the decoder allocated, hence malloc and free.
using PixelBlock = std::unique_ptr<unsigned char[], FreeBlock>;

inline PixelBlock allocate_pixels(std::size_t size) {
    PixelBlock block(static_cast<unsigned char*>(std::malloc(size)));
    if (!block) throw std::bad_alloc();
    return block;
}

// Bytes from one row to the next.
inline std::size_t stride_of(PageKind kind, int width) {
    const auto pixels = static_cast<std::size_t>(width);
    if (kind == PageKind::kBitonal) return (pixels + 31) / 32 * 4;
    return kind == PageKind::kGrey ? pixels : pixels * 3;
}

// Dots per inch; 0 when unknown.
struct Resolution {
    int x = 0;
    int y = 0;
};

struct Page {
    PageKind kind = PageKind::kBitonal;
    int width = 0;
    int height = 0;
    PixelBlock bytes;
    Resolution dpi;
    // Quarter turns clockwise (0 .. 3) that bring the page upright, as the file asks for.
    int quarter_turns = 0;

    std::size_t stride() const { return stride_of(kind, width); }
    std::size_t size() const { return stride() * static_cast<std::size_t>(height); }
    unsigned char* row(int y) const { return bytes.get() + stride() * static_cast<std::size_t>(y); }
};

}  // namespace tool
