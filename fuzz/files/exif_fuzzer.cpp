// The segments of a JPEG file and the orientation tag in them: whatever the file holds, segments do
// not overlap, the tag is one of 16 bits, and what lies behind the first "start of scan" is no tag.
//
// Input: the file.
#include "files/exif_orientation.h"

#include <algorithm>

#include "files/jpeg_segments.h"
#include "files/orientation.h"
#include "memory_file.h"

namespace {

void check_segments(std::FILE* file, std::size_t file_size) {
    tool::files::JpegSegments segments(file);
    std::size_t total = 2;
    while (segments.next() >= 0) total += 4 + segments.contents().size();
    fuzz::check(total == 2 || total <= file_size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const fuzz::File file = fuzz::open_bytes(data, size);
    check_segments(file.get(), size);
    const int tag = tool::files::jpeg_orientation(file.get());
    fuzz::check(tag >= 1 && tag <= 0xFFFF);
    constexpr std::uint8_t kStart[] = {0xFF, 0xD8, 0xFF, 0xDA, 0, 2};
    const bool only_scan =
        size >= sizeof kStart && std::equal(kStart, kStart + sizeof kStart, data);
    fuzz::check(!only_scan || tag == tool::files::kUprightTag);
    return 0;
}
