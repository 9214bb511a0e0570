// The pages of a TIFF file, listed, and read by both of the program's own readers. Pages are of the
// size that the list says, and have all of their pixels unless libtiff found an error.
//
// Input: the file.
#include <numeric>

#include "files/tiff_bounds.h"
#include "files/tiff_pages.h"
#include "files/tiff_unusual.h"
#include "memory_file.h"

namespace {

using fuzz::check;
using tool::Page;
using namespace tool::files;

constexpr std::size_t kMostPages = 8;

void check_page(const Page& page, const PagePlace& place, bool good) {
    check(page.width == place.width && page.height == place.height);
    check(page.bytes != nullptr || !good);
    if (!good) return;
    volatile int sum = std::accumulate(page.bytes.get(), page.bytes.get() + page.size(), 0);
    static_cast<void>(sum);
}

void read_page(const SeekableFile& file, const PagePlace& place, TiffAccess access,
               std::optional<Page> (*read)(TIFF*)) {
    const TiffErrors errors;
    const TiffFile tiff = open_tiff(file, access, place.offset);
    if (!tiff) return;
    if (!excessive_blocks(tiff.get()).empty() || !unread_kind(tiff.get()).empty()) return;
    if (const auto page = read(tiff.get())) check_page(*page, place, errors.first().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool collected = (collect_tiff_errors(), true);
    static_cast<void>(collected);
    const fuzz::MemoryFile bytes(data, size);
    const SeekableFile file(bytes.path());
    auto places = list_tiff_pages(file);
    if (places.size() > kMostPages) places.resize(kMostPages);
    for (const PagePlace& place : places) {
        if (!fuzz::is_small(place)) continue;
        read_page(file, place, TiffAccess::kRead, read_packed_tiff);
        read_page(file, place, TiffAccess::kMapped, read_unusual_tiff);
    }
    return 0;
}
