// A JPEG 2000 file is a chain of boxes: length, type, contents. The box "jp2h" holds boxes in its
// turn, "colr" and for palettes "pclr" among them, and "jp2c" is the codestream. Leptonica reads
// those of 8 bits, all components of the same size, and takes any three for red, green and blue.
#include "files/jpeg2000_file.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/jpeg2000_codestream.h"
#include "files/proportion.h"

namespace tool::files {
namespace {

constexpr std::uint64_t kMostPixels = 100'000'000;

constexpr std::uint64_t four_letters(const char* text) {
    std::uint64_t number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8 | static_cast<unsigned char>(text[i]);
    return number;
}

class Boxes {
  public:
    explicit Boxes(const SeekableFile& file) : view_(file) {
        if (number_at(view_, 0, 4) == Jpeg2000Codestream::kStart) {
            codestream_ = 0;
            end_ = file.size();
        } else {
            follow(0, file.size(), true);
        }
    }

    const FileView& view() const { return view_; }
    // Where the codestream starts and ends; both 0 when there is none.
    std::uint64_t codestream() const { return codestream_ == kNone ? 0 : codestream_; }
    std::uint64_t end() const { return end_; }
    bool known_colours() const { return known_colours_; }
    // Each becomes a component when the pixels are numbers of a palette; 0 without one.
    std::uint64_t palette_columns() const { return palette_columns_; }

  private:
    static constexpr std::uint64_t kNone = UINT64_MAX;
    static constexpr int kMostBoxes = 1000;  // in front of the codestream; real files have ten

    void follow(std::uint64_t at, std::uint64_t end, bool outermost) {
        while (at + 8 <= end && codestream_ == kNone && boxes_++ < kMostBoxes) {
            std::uint64_t size = number_at(view_, at, 4);
            const std::uint64_t type = number_at(view_, at + 4, 4);
            const std::uint64_t header = size == 1 ? 16 : 8;
            if (size == 1) size = number_at(view_, at + 8, 8);
            if (size == 0) size = end - at;
            if (size < header || size > end - at) return;
            const bool opened = outermost && type == four_letters("jp2h");
            if (opened) follow(at + header, at + size, false);
            if (!opened) open(type, at + header, at + size);
            at += size;
        }
    }

    void open(std::uint64_t type, std::uint64_t at, std::uint64_t end) {
        if (type == four_letters("colr") && !coloured_) open_colours(at);
        if (type == four_letters("pclr")) {
            palette_columns_ = std::max(palette_columns_, number_at(view_, at + 2, 1));
        }
        if (type == four_letters("jp2c")) {
            codestream_ = at;
            end_ = end;
        }
    }

    // By a number or by a profile, which names them.
    void open_colours(std::uint64_t at) {
        constexpr std::uint64_t kByNumber = 1, kByProfile = 2, kRgb = 16, kGrey = 17;
        const std::uint64_t way = number_at(view_, at, 1);
        if (way != kByNumber && way != kByProfile) return;
        coloured_ = true;
        const std::uint64_t number = number_at(view_, at + 3, 4),
                            name = number_at(view_, at + 19, 4);
        known_colours_ = way == kByNumber
                             ? number == kRgb || number == kGrey
                             : name == four_letters("RGB ") || name == four_letters("GRAY");
    }

    FileView view_;
    std::uint64_t codestream_ = kNone;
    std::uint64_t end_ = 0;
    std::uint64_t palette_columns_ = 0;
    bool coloured_ = false;
    bool known_colours_ = true;
    int boxes_ = 0;
};

class Outline {
  public:
    explicit Outline(const SeekableFile& file)
        : boxes_(file), codestream_(boxes_.view(), boxes_.codestream(), boxes_.end()) {}

    const Jpeg2000Codestream& codestream() const { return codestream_; }
    std::uint64_t end() const { return boxes_.end(); }
    PagePlace page() const {
        return {0, clamped(codestream_.width()), clamped(codestream_.height())};
    }
    // Those that are delivered.
    std::uint64_t components() const {
        return std::max(codestream_.components(), boxes_.palette_columns());
    }

    // What Leptonica does not read, or only at a price; empty when it does.
    std::string unreadable() const {
        if (!boxes_.known_colours())
            return "colours that are neither greys nor red, green and blue";
        const std::uint64_t count = components();
        if (count != 1 && count != 3 && count != 4) {
            return std::to_string(count) + " components per pixel";
        }
        if (!in_proportion(codestream_.overhead(count), page())) {
            return "very many tiles, blocks or layers";
        }
        return codestream_.unusual_samples();
    }

  private:
    static int clamped(std::uint64_t side) {
        return side > INT32_MAX ? INT32_MAX : static_cast<int>(side);
    }

    Boxes boxes_;
    Jpeg2000Codestream codestream_;
};

}  // namespace

std::optional<PagePlace> jpeg2000_page(const SeekableFile& file) {
    const Outline found(file);
    if (!found.codestream().whole()) return std::nullopt;
    const std::uint64_t width = found.codestream().width(), height = found.codestream().height();
    if (height != 0 && width > kMostPixels / height) {
        throw FileError(file.name(), std::to_string(width) + " x " + std::to_string(height) +
                                         " pixels are too many, the limit for JPEG 2000 is " +
                                         std::to_string(kMostPixels / 1'000'000) + " million");
    }
    const std::string unreadable = found.unreadable();
    if (!unreadable.empty()) {
        throw FileError(file.name(), "JPEG 2000 with " + unreadable +
                                         " is not read; make a PNG file of it first");
    }
    return found.page();
}

Decoded decode_jpeg2000(const SeekableFile& file) {
    constexpr l_uint32 kFullSize = 1;
    const Outline found(file);
    if (!in_proportion(found.end(), found.page())) {
        return {nullptr, "more data than its picture can have"};
    }
    const Stream stream = open_stream(file, {}, found.end());
    Decoded decoded{PixOwner(pixReadStreamJp2k(stream.get(), kFullSize, nullptr, 0, 0))};
    // Leptonica delivers alpha, but does not say so.
    if (decoded.image && found.components() == 4) pixSetSpp(decoded.image.get(), 4);
    return decoded;
}

}  // namespace tool::files
