// The EXIF data is the segment FFE1 that starts with "Exif\0\0"; the rest of it is laid out
// as a TIFF file, of which only the first directory is of interest. Decoders of JPEG leave the tag
// alone, so it is read here.
#include "files/exif_orientation.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "files/jpeg_segments.h"
#include "files/orientation.h"

namespace tool::files {
namespace {

constexpr int kOrientationTag = 0x0112;
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
    std::size_t entry = directory + 2;
    for (std::uint32_t i = 0; i < entries && entry < segment.size(); ++i, entry += 12) {
        if (tiff.number(entry, 2) == kOrientationTag) {
            return static_cast<int>(tiff.number(entry + 8, 2));
        }
    }
    return 0;
}

}  // namespace

int jpeg_orientation(std::FILE* file) {
    JpegSegments segments(file);
    for (int marker; (marker = segments.next()) >= 0 && marker != JpegSegments::kStartOfScan;) {
        const int tag = marker == kExifSegment ? orientation_in(segments.contents()) : 0;
        if (tag != 0) return tag;
    }
    return kUprightTag;
}

}  // namespace tool::files
