#include "page/page.h"

#include <cstring>
#include <new>

namespace tool {

const char* name_of(PageKind kind) {
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

PixelBlock allocate_pixels(std::size_t size) {
    PixelBlock block(static_cast<unsigned char*>(std::malloc(size)));
    if (!block) throw std::bad_alloc();
    return block;
}

PageShape shape_of(const Page& page) {
    return {page.kind, page.width, page.height, page.dpi};
}

std::string describe_size(const PageShape& shape) {
    const bool one = shape.width == 1 && shape.height == 1;
    return std::string(name_of(shape.kind)) + ", " + std::to_string(shape.width) + " x " +
           std::to_string(shape.height) + (one ? " pixel" : " pixels");
}

std::string describe(const PageShape& shape) {
    std::string text = describe_size(shape);
    if (shape.dpi.x == 0) return text + ", no resolution";
    text += ", " + std::to_string(shape.dpi.x);
    if (shape.dpi.y != shape.dpi.x) text += " x " + std::to_string(shape.dpi.y);
    return text + " dpi";
}

Page make_page(PageKind kind, int width, int height, Resolution dpi) {
    Page page;
    page.kind = kind;
    page.width = width;
    page.height = height;
    page.dpi = dpi;
    page.scale = dpi;
    page.bytes = allocate_pixels(page.size());
    return page;
}

Page make_page_like(const Page& page, PageKind kind) {
    Page made = make_page(kind, page.width, page.height, page.dpi);
    made.scale = page.scale;
    return made;
}

Page blank_page_like(const Page& page) {
    Page blank = make_page_like(page, PageKind::kBitonal);
    std::memset(blank.bytes.get(), 0, blank.size());
    return blank;
}

void clear_padding(Page& bits) {
    const auto last = static_cast<std::size_t>(bits.width) / 8;
    for (int y = 0; y < bits.height && bits.width % 32 != 0; ++y) {
        unsigned char* row = bits.row(y);
        row[last] &= static_cast<unsigned char>(-256 >> bits.width % 8);
        std::fill(row + last + 1, row + bits.stride(), static_cast<unsigned char>(0));
    }
}

Page copy_of(const Page& page) {
    Page copy = make_page_like(page, page.kind);
    std::memcpy(copy.bytes.get(), page.bytes.get(), page.size());
    return copy;
}

Box box_of(const Page& page) {
    return {0, 0, page.width, page.height};
}

}  // namespace tool
