// Leptonica decodes all pictures of a file at once, tells nothing of transparency, and keeps every
// piece of an extension in a block of its own. So the blocks of the file are followed first: a
// header, the table of colours, extensions and pictures, and an end mark. What an extension or a
// picture holds comes in pieces of up to 255 bytes. Leptonica is given the picture alone.
#include "files/gif_file.h"

#include <array>
#include <cstdint>
#include <vector>

#include "files/file_error.h"
#include "files/file_view.h"
#include "files/proportion.h"

namespace tool::files {
namespace {

constexpr int kPicture = 0x2C, kExtension = 0x21, kEnd = 0x3B;

struct GifOutline {
    PagePlace page;                // of the first picture
    std::size_t picture_size = 0;  // in bytes
    std::size_t first_blocks = 0;  // bytes of the header and the table of colours
    int pictures = 0;              // counted up to 2
    int transparent = -1;          // the number of a colour
    bool whole = false;            // up to the end mark
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
        found.first_blocks = place();
        for (int kind = byte(); kind >= 0 && found.pictures < 2; kind = byte()) {
            if (kind == kPicture) {
                picture(found);
            } else if (kind == kExtension) {
                extension(found);
            } else {
                found.whole = kind == kEnd;
                break;
            }
        }
        return found;
    }

  private:
    static constexpr int kGraphicControl = 0xF9;

    std::size_t place() { return static_cast<std::size_t>(std::ftell(stream_.get())); }
    int byte() { return getc_unlocked(stream_.get()); }
    int number() {
        const int low = byte();
        return low | byte() << 8;
    }
    void skip(int count) { files::skip(stream_.get(), static_cast<std::size_t>(count)); }
    void skip_colours(int flags) {
        if (flags > 0 && (flags & 0x80) != 0) skip(3 << ((flags & 7) + 1));
    }
    void skip_pieces() {
        for (int size = byte(); size > 0; size = byte()) skip(size);
    }

    void picture(GifOutline& found) {
        const std::size_t start = place() - 1;
        skip(4);
        const int width = number(), height = number();
        skip_colours(byte());
        skip(1);
        skip_pieces();
        if (found.pictures++ > 0) return;
        found.page = {start, width, height};
        found.picture_size = place() - start;
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

std::vector<std::uint8_t> picture_alone(const SeekableFile& file, const GifOutline& outline) {
    std::vector<std::uint8_t> bytes(outline.first_blocks + outline.picture_size + 1);
    FileView view(file);
    view.read(bytes.data(), outline.first_blocks);
    view.seek(static_cast<ssize_t>(outline.page.offset), SEEK_SET);
    view.read(bytes.data() + outline.first_blocks, outline.picture_size);
    bytes.back() = kEnd;
    return bytes;
}

}  // namespace

std::optional<PagePlace> gif_page(const SeekableFile& file) {
    const GifOutline found = GifBlocks(file).outline();
    if (found.pictures > 1) {
        throw FileError(file.name(),
                        "a GIF file of several pictures; save them as files of their own");
    }
    if (found.pictures == 0 || !found.whole) return std::nullopt;
    return found.page;
}

Decoded decode_gif(const SeekableFile& file) {
    const GifOutline found = GifBlocks(file).outline();
    if (!in_proportion(found.picture_size, found.page)) {
        return {nullptr, "more data than its picture can have"};
    }
    const std::vector<std::uint8_t> bytes = picture_alone(file, found);
    Decoded decoded{PixOwner(pixReadMemGif(bytes.data(), bytes.size()))};
    PIXCMAP* colours = decoded.image ? pixGetColormap(decoded.image.get()) : nullptr;
    if (colours != nullptr && found.transparent >= 0 &&
        found.transparent < pixcmapGetCount(colours)) {
        pixcmapResetColor(colours, found.transparent, 255, 255, 255);
    }
    return decoded;
}

}  // namespace tool::files
