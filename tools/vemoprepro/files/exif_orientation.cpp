// A JPEG file is a chain of segments: FF, a marker byte, and a big-endian length that counts
// itself. The EXIF data is the segment FFE1 that starts with "Exif\0\0"; the rest of it is laid out
// as a TIFF file, of which only the first directory is of interest. Decoders of JPEG leave the tag
// alone, so it is read here.
#include "files/exif_orientation.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "files/orientation.h"

namespace tool::files {
namespace {

constexpr int kOrientationTag = 0x0112;
constexpr int kStartOfScan = 0xDA;
constexpr int kExifSegment = 0xE1;

// Bounded reads of either byte order; 0 beyond the end.
class TiffBytes {
  public:
    explicit TiffBytes(const std::vector<std::uint8_t>& bytes, std::size_t start)
        : bytes_(bytes), start_(start) {
        little_ = byte(0) == 'I';
    }

    std::uint32_t number(std::size_t at, int size) const {
        std::uint32_t value = 0;
        for (int i = 0; i < size; ++i) {
            const int place = little_ ? size - 1 - i : i;
            value = value << 8 | byte(at + static_cast<std::size_t>(place));
        }
        return value;
    }

  private:
    std::uint8_t byte(std::size_t at) const {
        return start_ + at < bytes_.size() ? bytes_[start_ + at] : std::uint8_t{0};
    }

    const std::vector<std::uint8_t>& bytes_;
    std::size_t start_;
    bool little_ = false;
};

int orientation_in(const std::vector<std::uint8_t>& segment) {
    constexpr char kSignature[] = {'E', 'x', 'i', 'f', 0, 0};
    if (segment.size() < 14 || std::memcmp(segment.data(), kSignature, sizeof kSignature) != 0) {
        return 0;
    }
    const TiffBytes tiff(segment, sizeof kSignature);
    const std::size_t directory = tiff.number(4, 4);
    const std::uint32_t entries = tiff.number(directory, 2);
    for (std::uint32_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * std::size_t{12};
        if (tiff.number(entry, 2) == kOrientationTag) {
            return static_cast<int>(tiff.number(entry + 8, 2));
        }
    }
    return 0;
}

// The next segment's marker, or -1; `body` receives what follows its length.
int next_segment(std::FILE* file, std::vector<std::uint8_t>& body) {
    if (std::getc(file) != 0xFF) return -1;
    int marker = std::getc(file);
    while (marker == 0xFF) marker = std::getc(file);
    const int high = std::getc(file), low = std::getc(file);
    if (marker < 0 || high < 0 || low < 0) return -1;
    const int length = high << 8 | low;
    if (length < 2) return -1;
    body.resize(static_cast<std::size_t>(length - 2));
    return std::fread(body.data(), 1, body.size(), file) == body.size() ? marker : -1;
}

}  // namespace

int jpeg_orientation(std::FILE* file) {
    std::rewind(file);
    if (std::getc(file) != 0xFF || std::getc(file) != 0xD8) return kUprightTag;
    std::vector<std::uint8_t> body;
    for (int marker; (marker = next_segment(file, body)) >= 0 && marker != kStartOfScan;) {
        if (marker != kExifSegment) continue;
        const int tag = orientation_in(body);
        if (tag != 0) return tag;
    }
    return kUprightTag;
}

}  // namespace tool::files
