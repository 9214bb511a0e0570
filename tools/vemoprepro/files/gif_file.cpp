// Leptonica decodes all pictures of a file at once and tells nothing of transparency. So the blocks
// of the file are followed first: a header, the table of colours, extensions and pictures, and an
// end mark. What an extension or a picture holds comes in pieces of up to 255 bytes.
#include "files/gif_file.h"

#include <array>
#include <cstdint>
#include <vector>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/proportion.h"

namespace tool::files {
namespace {

struct GifOutline {
    PagePlace page;          // of the first picture
    int pictures = 0;        // counted up to 2
    int transparent = -1;    // the number of a colour
    std::size_t length = 0;  // up to the end mark; 0 when there is none
};

class GifBlocks {
  public:
    explicit GifBlocks(const SeekableFile& file) : stream_(open_stream(file)) {}

    // Up to the end mark or the second picture.
    GifOutline outline() {
        GifOutline found;
        skip(10);
        skip_colours(byte());
        skip(2);
        for (int kind = byte(); kind >= 0 && found.pictures < 2; kind = byte()) {
            if (kind == kEnd) {
                found.length = static_cast<std::size_t>(std::ftell(stream_.get()));
                break;
            }
            if (kind == kPicture) {
                picture(found);
            } else if (kind == kExtension) {
                extension(found);
            } else {
                break;
            }
        }
        return found;
    }

  private:
    static constexpr int kPicture = 0x2C, kExtension = 0x21, kEnd = 0x3B;
    static constexpr int kGraphicControl = 0xF9;

    int byte() { return getc_unlocked(stream_.get()); }
    int number() {
        const int low = byte();
        return low | byte() << 8;
    }
    void skip(long count) { std::fseek(stream_.get(), count, SEEK_CUR); }
    void skip_colours(int flags) {
        if (flags > 0 && (flags & 0x80) != 0) skip(3L << ((flags & 7) + 1));
    }
    void skip_pieces() {
        for (int size = byte(); size > 0; size = byte()) skip(size);
    }

    void picture(GifOutline& found) {
        skip(4);
        const int width = number(), height = number();
        skip_colours(byte());
        skip(1);
        skip_pieces();
        if (found.pictures++ == 0) found.page = {0, width, height};
    }

    void extension(GifOutline& found) {
        if (byte() != kGraphicControl || found.pictures > 0) return skip_pieces();
        const int size = byte();
        if (size <= 0) return;
        if (size >= 4) control(found);
        skip(size >= 4 ? size - 4 : size);
        skip_pieces();
    }

    // Flags, a time, and the colour that the first flag makes transparent.
    void control(GifOutline& found) {
        const int flags = byte();
        skip(2);
        const int colour = byte();
        found.transparent = (flags & 1) != 0 ? colour : -1;
    }

    Stream stream_;
};

}  // namespace

std::optional<PagePlace> gif_page(const SeekableFile& file) {
    const GifOutline found = GifBlocks(file).outline();
    if (found.pictures > 1) {
        throw FileError(file.name(),
                        "a GIF file of several pictures; save them as files of their own");
    }
    if (found.pictures == 0 || found.length == 0) return std::nullopt;
    return found.page;
}

Decoded decode_gif(const SeekableFile& file) {
    const GifOutline found = GifBlocks(file).outline();
    if (!in_proportion(found.length, found.page)) {
        return {nullptr, "more data than its picture can have"};
    }
    std::vector<std::uint8_t> bytes(found.length);
    if (FileView(file).read(bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        return {};
    }
    Decoded decoded{PixOwner(pixReadMemGif(bytes.data(), bytes.size()))};
    PIXCMAP* colours = decoded.image ? pixGetColormap(decoded.image.get()) : nullptr;
    if (colours != nullptr && found.transparent >= 0 &&
        found.transparent < pixcmapGetCount(colours)) {
        pixcmapResetColor(colours, found.transparent, 255, 255, 255);
    }
    return decoded;
}

}  // namespace tool::files
