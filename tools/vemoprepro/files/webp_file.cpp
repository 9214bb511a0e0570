// A WebP file is "RIFF", the number of bytes that follow, "WEBP" and chunks; an extended file
// starts with the chunk "VP8X", whose first byte says what the file holds.
#include "files/webp_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/proportion.h"

namespace tool::files {
namespace {

constexpr std::size_t kFirstChunk = 12;
constexpr std::size_t kContents = 20;

// As the file states it; 0 when the file is shorter.
std::size_t size_of_picture(const SeekableFile& file) {
    std::uint8_t start[8] = {};
    FileView(file).read(start, sizeof start);
    std::size_t size = sizeof start;
    for (std::size_t i = 0; i < 4; ++i) size += std::size_t{start[4 + i]} << 8 * i;
    return size <= file.size() ? size : 0;
}

std::vector<std::uint8_t> read_start(const SeekableFile& file, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    FileView(file).read(bytes.data(), bytes.size());
    return bytes;
}

}  // namespace

std::optional<PagePlace> webp_page(const SeekableFile& file) {
    constexpr std::size_t kHeaders = 4096;
    constexpr int kMoving = 2;
    const std::vector<std::uint8_t> bytes =
        read_start(file, std::min(size_of_picture(file), kHeaders));
    if (bytes.size() <= kContents) return std::nullopt;
    if (std::memcmp(bytes.data() + kFirstChunk, "VP8X", 4) == 0 &&
        (bytes[kContents] & kMoving) != 0) {
        throw FileError(file.name(), "a moving WebP file; save its pictures as files of their own");
    }
    PagePlace page;
    l_int32 samples = 0;
    const l_ok failed =
        readHeaderMemWebP(bytes.data(), bytes.size(), &page.width, &page.height, &samples);
    return failed == 0 ? std::optional(page) : std::nullopt;
}

Decoded decode_webp(const SeekableFile& file) {
    const std::optional<PagePlace> page = webp_page(file);
    if (!page) return {};
    const std::size_t size = size_of_picture(file);
    if (!in_proportion(size, *page)) return {nullptr, "more data than its picture can have"};
    const std::vector<std::uint8_t> bytes = read_start(file, size);
    return {PixOwner(pixReadMemWebP(bytes.data(), bytes.size()))};
}

}  // namespace tool::files
