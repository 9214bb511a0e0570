// The orientation tag of a JPEG file: whatever the file holds, the tag is one of 16 bits, and a
// page that is oriented by it twice is mirrored back.
//
// Input: the file.
#include <algorithm>
#include <cstring>

#include "files/exif_orientation.h"
#include "files/orientation.h"
#include "memory_file.h"

namespace {

using fuzz::check;
using tool::Page;
using tool::PageKind;

void check_turns(PageKind kind, int tag) {
    const Page before = make_page(kind, 5, 3, {});
    for (std::size_t i = 0; i < before.size(); ++i) {
        before.bytes[i] = static_cast<unsigned char>(i);
    }
    Page page = copy_of(before);
    tool::files::orient(page, tag);
    check(page.quarter_turns >= 0 && page.quarter_turns <= 3);
    check(tag >= 1 && tag <= 8 ? true : page.quarter_turns == 0);
    tool::files::orient(page, tag);
    check(std::memcmp(page.bytes.get(), before.bytes.get(), before.size()) == 0);
}

// The place of the first "start of scan" decides: what lies behind it is no tag.
void check_behind_scan(const std::uint8_t* data, std::size_t size, int tag) {
    constexpr std::uint8_t kStart[] = {0xFF, 0xD8, 0xFF, 0xDA, 0, 2};
    if (size < sizeof kStart || !std::equal(kStart, kStart + sizeof kStart, data)) return;
    check(tag == tool::files::kUprightTag);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const fuzz::File file = fuzz::open_bytes(data, size);
    const int tag = tool::files::jpeg_orientation(file.get());
    check(tag >= 1 && tag <= 0xFFFF);
    check_turns(PageKind::kGrey, tag);
    check_turns(PageKind::kColour, tag);
    check_behind_scan(data, size, tag);
    return 0;
}
