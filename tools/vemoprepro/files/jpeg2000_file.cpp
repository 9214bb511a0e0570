// A JPEG 2000 file is a chain of boxes: length, type, contents. The box "jp2h" holds boxes in its
// turn, "colr" among them, and "jp2c" is the codestream. This starts with two markers, the second
// of which gives the size of the page and its components. Leptonica reads those of 8 bits, all of
// the same size, and takes any three for red, green and blue.
#include "files/jpeg2000_file.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/proportion.h"

namespace tool::files {
namespace {

constexpr std::uint64_t kMostPixels = 100'000'000;
constexpr std::uint32_t kColour = 16, kGrey = 17;  // of the box "colr"

class Outline {
  public:
    explicit Outline(const SeekableFile& file) : view_(file) {
        if (number_at(0, 4) == kCodestream) {
            codestream_ = 0;
            end_ = file.size();
        } else {
            follow_boxes(0, file.size());
        }
    }

    bool whole() const { return codestream_ != kNone && number_at(codestream_, 4) == kCodestream; }
    std::uint64_t width() const { return extent(8); }
    std::uint64_t height() const { return extent(12); }
    // Where the codestream does.
    std::uint64_t end() const { return end_; }
    std::uint64_t components() const { return number_at(codestream_ + 40, 2); }

    // What Leptonica does not read; empty when it does.
    std::string unreadable() const {
        if (colours_ != 0 && colours_ != kColour && colours_ != kGrey) {
            return "colours that are neither greys nor red, green and blue";
        }
        const std::uint64_t count = components();
        if (count != 1 && count != 3 && count != 4) {
            return std::to_string(count) + " components per pixel";
        }
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t component = codestream_ + 42 + 3 * i;
            const std::uint64_t depth = number_at(component, 1);  // less 1, and 128 for signed ones
            if (depth > 127) return "signed samples";
            if (depth != 7) return std::to_string(depth + 1) + "-bit samples";
            if (number_at(component + 1, 2) != 0x0101) return "components of several sizes";
        }
        return {};
    }

  private:
    static constexpr std::uint64_t kCodestream = 0xFF4FFF51;
    static constexpr std::uint64_t kNone = UINT64_MAX;
    static constexpr int kMostBoxes = 1000;  // in front of the codestream; real files have ten

    // 0 behind the end of the file.
    std::uint64_t number_at(std::uint64_t at, std::size_t size) const {
        std::array<std::uint8_t, 8> bytes{};
        FileView view = view_;
        if (at > INT64_MAX - 8 || view.seek(static_cast<ssize_t>(at), SEEK_SET) < 0 ||
            view.read(bytes.data(), size) != static_cast<ssize_t>(size)) {
            return 0;
        }
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < size; ++i) number = number << 8 | bytes[i];
        return number;
    }

    // From the origin that is stated 8 bytes on to the end.
    std::uint64_t extent(std::uint64_t at) const {
        const std::uint64_t end = number_at(codestream_ + at, 4);
        const std::uint64_t start = number_at(codestream_ + at + 8, 4);
        return end > start ? end - start : 0;
    }

    void follow_boxes(std::uint64_t at, std::uint64_t end) {
        while (at + 8 <= end && codestream_ == kNone && boxes_++ < kMostBoxes) {
            std::uint64_t size = number_at(at, 4);
            const std::uint64_t type = number_at(at + 4, 4);
            const std::uint64_t header = size == 1 ? 16 : 8;
            if (size == 1) size = number_at(at + 8, 8);
            if (size == 0) size = end - at;
            if (size < header || size > end - at) return;
            open_box(type, at + header, at + size);
            at += size;
        }
    }

    void open_box(std::uint64_t type, std::uint64_t at, std::uint64_t end) {
        constexpr std::uint64_t kHeaders = 0x6A703268, kColours = 0x636F6C72, kPixels = 0x6A703263;
        if (type == kHeaders && depth_++ == 0) follow_boxes(at, end);
        if (type == kColours && colours_ == 0 && number_at(at, 1) == 1) {
            colours_ = static_cast<std::uint32_t>(number_at(at + 3, 4));
        }
        if (type == kPixels) {
            codestream_ = at;
            end_ = end;
        }
    }

    FileView view_;
    std::uint64_t codestream_ = kNone;
    std::uint64_t end_ = 0;
    std::uint32_t colours_ = 0;
    int depth_ = 0;
    int boxes_ = 0;
};

int clamped(std::uint64_t side) {
    return side > INT32_MAX ? INT32_MAX : static_cast<int>(side);
}

}  // namespace

std::optional<PagePlace> jpeg2000_page(const SeekableFile& file) {
    const Outline found(file);
    if (!found.whole()) return std::nullopt;
    const std::string unreadable = found.unreadable();
    if (!unreadable.empty()) {
        throw FileError(file.name(), "JPEG 2000 with " + unreadable +
                                         " is not read; make a PNG file of it first");
    }
    const std::uint64_t width = found.width(), height = found.height();
    if (height != 0 && width > kMostPixels / height) {
        throw FileError(file.name(), std::to_string(width) + " x " + std::to_string(height) +
                                         " pixels are too many, the limit for JPEG 2000 is " +
                                         std::to_string(kMostPixels / 1'000'000) + " million");
    }
    return PagePlace{0, clamped(width), clamped(height)};
}

Decoded decode_jpeg2000(const SeekableFile& file) {
    constexpr l_uint32 kFullSize = 1;
    const Outline found(file);
    const PagePlace page{0, clamped(found.width()), clamped(found.height())};
    if (!in_proportion(found.end(), page)) return {nullptr, "more data than its picture can have"};
    const Stream stream = open_stream(file, {}, found.end());
    Decoded decoded{PixOwner(pixReadStreamJp2k(stream.get(), kFullSize, nullptr, 0, 0))};
    // Leptonica delivers alpha, but does not say so.
    if (decoded.image && found.components() == 4) pixSetSpp(decoded.image.get(), 4);
    return decoded;
}

}  // namespace tool::files
