// The images of a PNM file: every raw one that is listed can be read, has the size that the list
// says, and its pixels are those of the file.
//
// Input: the file.
#include <algorithm>
#include <cstdio>
#include <string>

#include "files/pnm_pages.h"
#include "memory_file.h"

namespace {

using fuzz::check;
using tool::Page;
using tool::PageKind;

// Where the rows begin of an image that stands in the file as it does on the page; null for samples
// that are scaled, and for headers that are long or have comments.
const std::uint8_t* plain_rows(const std::uint8_t* image, const std::uint8_t* end) {
    const std::string header(image, std::min(end, image + 60));
    int width = 0, height = 0, largest = 255, used = 0;
    if (header[1] == '4') {
        std::sscanf(header.c_str(), "P4 %d %d%n", &width, &height, &used);
    } else {
        std::sscanf(header.c_str(), "P%*1[56] %d %d %d%n", &width, &height, &largest, &used);
    }
    const auto length = static_cast<std::size_t>(used);
    return used > 0 && length < header.size() && largest == 255 ? image + used + 1 : nullptr;
}

void check_rows(const Page& page, const std::uint8_t* rows) {
    const auto pixels = static_cast<std::size_t>(page.width);
    const bool bits = page.kind == PageKind::kBitonal;
    const std::size_t size = bits ? (pixels + 7) / 8 : page.stride();
    const std::size_t whole = bits ? pixels / 8 : size;
    for (int y = 0; y < page.height; ++y, rows += size) {
        check(std::equal(rows, rows + whole, page.row(y)));
        if (whole < size) check(page.row(y)[whole] == (rows[whole] & ~(0xFF >> pixels % 8)));
        for (std::size_t i = size; i < page.stride(); ++i) check(page.row(y)[i] == 0);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const fuzz::File file = fuzz::open_bytes(data, size);
    const auto places = tool::files::list_pnm_pages(file.get());
    for (const tool::files::PagePlace& place : places) {
        check(place.offset < size);
        if (!fuzz::is_small(place)) continue;  // plain ones may state any size
        const auto page = tool::files::read_pnm(file.get(), place);
        if (!page) {
            check(places.size() == 1);  // a plain one that ends early
            continue;
        }
        check(page->width == place.width && page->height == place.height);
        const std::uint8_t* rows = plain_rows(data + place.offset, data + size);
        if (rows != nullptr) check_rows(*page, rows);
    }
    return 0;
}
