// A TIFF file starts with its byte order, a version and the place of the first directory. A
// directory is the number of its entries, the entries, and the place of the next directory; 0 ends
// the chain.
#include "files/tiff_chain.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string>

#include "files/tiff_file.h"

namespace tool::files {
namespace {

// libtiff compares the entries of a directory with one another; real ones have fewer than 100.
constexpr std::uint64_t kMostEntries = 512;

// Sizes of numbers in bytes.
struct Layout {
    bool little_endian = false;
    std::size_t place = 4;  // of the first directory in the header, and the size of every place
    std::size_t count = 2;
    std::size_t entry = 12;
};

std::optional<Layout> read_layout(const SeekableFile& file) {
    std::array<char, 4> start{};
    if (FileView(file).read(start.data(), start.size()) != 4) return std::nullopt;
    for (const bool big : {false, true}) {
        const char version = big ? 43 : 42;
        const Layout layout = big ? Layout{false, 8, 8, 20} : Layout{};
        if (start == std::array<char, 4>{'M', 'M', 0, version}) return layout;
        if (start == std::array<char, 4>{'I', 'I', version, 0}) {
            return Layout{true, layout.place, layout.count, layout.entry};
        }
    }
    return std::nullopt;
}

std::uint64_t to_number(const unsigned char* bytes, std::size_t size, const Layout& layout) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        number = number << 8 | bytes[layout.little_endian ? size - 1 - i : i];
    }
    return number;
}

std::optional<std::uint64_t> read_number(std::FILE* stream, const Layout& layout, std::uint64_t at,
                                         std::size_t size) {
    std::array<unsigned char, 8> bytes{};
    if (at > INT64_MAX || std::fseek(stream, static_cast<long>(at), SEEK_SET) != 0 ||
        std::fread(bytes.data(), 1, size, stream) != size) {
        return std::nullopt;
    }
    return to_number(bytes.data(), size, layout);
}

// What one tag has outside of its entry.
std::uint64_t data_of(const unsigned char* entry, const Layout& layout) {
    constexpr std::uint64_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    const std::uint64_t type = to_number(entry + 2, 2, layout);
    const std::uint64_t count = to_number(entry + 4, layout.place, layout);
    const std::uint64_t size = type < std::size(kSizes) ? kSizes[type] : 0;
    std::uint64_t bytes = 0;
    if (__builtin_mul_overflow(size, count, &bytes)) return UINT64_MAX;
    return bytes > layout.place ? bytes : 0;
}

// What libtiff reads for the tags of a directory whose entries the stream is at.
std::uint64_t data_of_entries(std::FILE* stream, const Layout& layout, std::uint64_t entries,
                              std::uint64_t file_size) {
    std::array<unsigned char, 20> entry{};
    std::uint64_t bytes = 0;
    for (std::uint64_t i = 0; i < entries; ++i) {
        if (std::fread(entry.data(), 1, layout.entry, stream) != layout.entry) break;
        bytes += std::min(data_of(entry.data(), layout), file_size);
    }
    return bytes;
}

}  // namespace

bool starts_as_tiff(const SeekableFile& file) {
    return read_layout(file).has_value();
}

// Directories of a sound file do not overlap, so that their sizes add up to less than the file's;
// those of a chain that runs in a circle soon do not. What their tags have elsewhere may be shared
// by all pages, such as a colour profile; but then libtiff reads it for each, which takes quadratic
// time when it is large.
std::vector<std::size_t> list_directories(const SeekableFile& file) {
    constexpr std::uint64_t kMostSharing = 16;
    const Layout layout = read_layout(file).value_or(Layout{});
    const Stream stream = open_stream(file);
    std::vector<std::size_t> directories;
    const auto damaged = [](const std::string& reason) {
        TiffErrors::note(reason);
        return std::vector<std::size_t>();
    };
    std::uint64_t total = 0, data = 0;
    auto place = read_number(stream.get(), layout, layout.place, layout.place);
    while (place.value_or(0) != 0) {
        const auto entries = read_number(stream.get(), layout, *place, layout.count);
        if (!entries) break;
        if (*entries > kMostEntries) {
            return damaged("a page of " + std::to_string(*entries) + " tags");
        }
        const std::uint64_t before_next = layout.count + *entries * layout.entry;
        total += before_next + layout.place;
        if (total > file.size()) return damaged("its pages run in a circle");
        data += data_of_entries(stream.get(), layout, *entries, file.size());
        if (data / kMostSharing > file.size()) {
            return damaged("the tags of its pages are many times as large as the file");
        }
        directories.push_back(*place);
        place = read_number(stream.get(), layout, *place + before_next, layout.place);
    }
    if (place != std::uint64_t{0}) return damaged("it ends within the list of its pages");
    return directories;
}

Patch first_directory(const SeekableFile& file, std::size_t directory) {
    const Layout layout = read_layout(file).value_or(Layout{});
    Patch patch{layout.place, std::string(layout.place, '\0')};
    for (std::size_t i = 0; i < layout.place; ++i) {
        const std::size_t digit = layout.little_endian ? i : layout.place - 1 - i;
        patch.bytes[i] = static_cast<char>(directory >> 8 * digit & 255);
    }
    return patch;
}

}  // namespace tool::files
