#include "files/least_kind.h"

#include <utility>

#include "page/ink.h"

namespace tool::files {
namespace {

// Gives the unused end of the block back.
void shrink(Page& page) {
    unsigned char* whole = page.bytes.release();
    void* smaller = std::realloc(whole, page.size());
    page.bytes.reset(smaller != nullptr ? static_cast<unsigned char*>(smaller) : whole);
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
    Page bits = blank_page_like(page);
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

void reduce_kind(Page& page) {
    if (page.kind == PageKind::kColour && without_colour(page)) keep_one_byte_in_three(page);
    if (page.kind == PageKind::kGrey && only_black_and_white(page)) pack_bits(page);
    shrink(page);
}

}  // namespace tool::files
