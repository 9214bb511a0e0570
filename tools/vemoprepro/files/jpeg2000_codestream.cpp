// A codestream is a chain of segments: a marker of two bytes, for most a length, which counts
// itself, and contents. The main header ends with the first part of a tile. Such a part says how
// long it is, has a header of its own, and pixels behind a marker.
//
// Decoders hold something for every tile, and within a tile for each precinct and code block of
// each resolution, and for each packet: a precinct's share of a layer. Files state all of these as
// small or as many as they like, for the whole page, for a component or for a tile.
#include "files/jpeg2000_codestream.h"

#include <algorithm>
#include <array>

namespace tool::files {
namespace {

// As measured with OpenJPEG.
constexpr std::uint64_t kBytesPerTile = 12'000, kBytesPerBlock = 600, kBytesPerPacket = 2;

constexpr std::uint64_t kMostTiles = 65536;  // along a side; decoders refuse more in all

constexpr std::uint64_t kPart = 0xFF90, kPixels = 0xFF93, kEnd = 0xFFD9;
constexpr std::uint64_t kStyle = 0xFF52, kComponentStyle = 0xFF53;

// The others that may stand in a header. What is behind an unknown one nobody can tell.
bool is_known(std::uint64_t marker) {
    constexpr std::uint64_t kKnown[] = {0xFF50, 0xFF51, 0xFF55, 0xFF57, 0xFF58, 0xFF5C,
                                        0xFF5D, 0xFF5E, 0xFF5F, 0xFF60, 0xFF61, 0xFF63,
                                        0xFF64, 0xFF74, 0xFF75, 0xFF77, 0xFF78};
    return marker == kPart || marker == kStyle || marker == kComponentStyle ||
           std::find(std::begin(kKnown), std::end(kKnown), marker) != std::end(kKnown);
}

std::uint64_t pieces(std::uint64_t length, std::uint64_t exponent) {
    return (length + (std::uint64_t{1} << exponent) - 1) >> exponent;
}

}  // namespace

std::uint64_t number_at(const FileView& file, std::uint64_t at, std::size_t size) {
    std::array<std::uint8_t, 8> bytes{};
    FileView view = file;
    if (at > INT64_MAX - 8 || view.seek(static_cast<ssize_t>(at), SEEK_SET) < 0 ||
        view.read(bytes.data(), size) != static_cast<ssize_t>(size)) {
        return 0;
    }
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) number = number << 8 | bytes[i];
    return number;
}

Jpeg2000Codestream::Jpeg2000Codestream(const FileView& file, std::uint64_t start, std::uint64_t end)
    : file_(file), start_(start), end_(end), whole_(number(0, 4) == kStart && follow_headers()) {}

// From the origin that is stated 8 bytes on to the end.
std::uint64_t Jpeg2000Codestream::extent(std::uint64_t at) const {
    const std::uint64_t end = number(at, 4), start = number(at + 8, 4);
    return end > start ? end - start : 0;
}

// Along the same side.
std::uint64_t Jpeg2000Codestream::tiles(std::uint64_t at) const {
    const std::uint64_t end = number(at, 4), size = number(at + 16, 4), start = number(at + 24, 4);
    return size > 0 && end > start ? std::min((end - start + size - 1) / size, kMostTiles) : 0;
}

std::string Jpeg2000Codestream::unusual_samples() const {
    for (std::uint64_t i = 0; i < components(); ++i) {
        const std::uint64_t depth = number(42 + 3 * i, 1);  // less 1, and 128 for signed ones
        if (depth > 127) return "signed samples";
        if (depth != 7) return std::to_string(depth + 1) + "-bit samples";
        if (number(43 + 3 * i, 2) != 0x0101) return "components of several sizes";
    }
    return {};
}

std::uint64_t Jpeg2000Codestream::overhead(std::uint64_t components) const {
    return tiles(8) * tiles(12) * kBytesPerTile + components * most_bytes_;
}

bool Jpeg2000Codestream::follow_headers() {
    constexpr int kMostSegments = 200'000;
    std::uint64_t at = start_ + 2;
    for (int i = 0; at < end_; ++i) {
        const std::uint64_t marker = number_at(file_, at, 2);
        if (marker == kEnd) return true;
        if (marker == kPixels && part_end_ > at) {
            at = part_end_;
            continue;
        }
        const std::uint64_t length = number_at(file_, at + 2, 2);
        if (i == kMostSegments || length < 2 || !open_segment(marker, at)) return false;
        at += 2 + length;
    }
    return part_end_ != 0;
}

bool Jpeg2000Codestream::open_segment(std::uint64_t marker, std::uint64_t at) {
    if (marker == kPart) {
        const std::uint64_t size = number_at(file_, at + 6, 4);
        part_end_ = size == 0 ? end_ : at + size;
    } else if (marker == kStyle) {
        layers_ = std::max(layers_, number_at(file_, at + 6, 2));
        take({layers_, at + 9, (number_at(file_, at + 4, 1) & 1) != 0});
    } else if (marker == kComponentStyle) {
        take({layers_, at + 6, (number_at(file_, at + 5, 1) & 1) != 0});
    }
    return is_known(marker);
}

// Every style counts as if it were that of the whole page.
void Jpeg2000Codestream::take(const CodingStyle& style) {
    constexpr std::uint64_t kMostLevels = 32;
    const auto value = [&](std::uint64_t i) { return number_at(file_, style.at + i, 1); };
    const std::uint64_t levels = std::min(value(0), kMostLevels);
    const std::uint64_t block_width = value(1) % 16 + 2, block_height = value(2) % 16 + 2;
    std::uint64_t blocks = 0, precincts = 0;
    for (std::uint64_t i = 0; i <= levels; ++i) {
        const std::uint64_t size = style.with_precincts ? value(5 + i) : 0xFF;  // two exponents
        const std::uint64_t width = pieces(this->width(), levels - i);
        const std::uint64_t height = pieces(this->height(), levels - i);
        precincts = std::max(precincts, pieces(width, size % 16) * pieces(height, size / 16));
        // Above the lowest resolution there are three bands of half the sides.
        const std::uint64_t half = i > 0 ? 1 : 0;
        const std::uint64_t in_width = std::min(block_width + half, size % 16);
        const std::uint64_t in_height = std::min(block_height + half, size / 16);
        blocks += (i > 0 ? 3 : 1) * pieces(width, in_width) * pieces(height, in_height);
    }
    const std::uint64_t bytes =
        blocks * kBytesPerBlock + style.layers * (levels + 1) * precincts * kBytesPerPacket;
    most_bytes_ = std::max(most_bytes_, bytes);
}

}  // namespace tool::files
