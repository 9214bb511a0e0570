// A decoder unpacks texts and colour profiles that nobody here asks for, and a file may have any
// number of them, each a thousand times as large as its chunk. So it sees the chunks only that say
// what the pixels are.
#include "files/png_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "files/file_view.h"
#include "files/png_colour_key.h"

namespace tool::files {
namespace {

// A PNG file is a signature and a chain of chunks: length, type, that many bytes, check sum.
class PixelChunks {
  public:
    PixelChunks(const SeekableFile& file, bool with_transparency)
        : stream_(open_stream(file)), with_transparency_(with_transparency) {}

    // Ends early where a chunk does, as reads may.
    std::size_t read(char* bytes, std::size_t size) {
        if (start_left_ == 0 && left_ == 0 && !find_next()) return 0;
        if (start_left_ > 0) {
            size = std::min(size, start_left_);
            std::memcpy(bytes, start_.data() + start_.size() - start_left_, size);
            start_left_ -= size;
            return size;
        }
        const std::size_t count = std::fread(bytes, 1, std::min(size, left_), stream_.get());
        left_ -= count;
        return count;
    }

  private:
    static constexpr std::size_t kSignature = 8, kCheckSum = 4;

    // The next chunk that is wanted; false at the end of the file.
    bool find_next() {
        while (std::fread(start_.data(), 1, start_.size(), stream_.get()) == start_.size()) {
            std::size_t size = kCheckSum;
            for (std::size_t i = 0; i < 4; ++i) {
                size += std::size_t{static_cast<std::uint8_t>(start_[i])} << (24 - 8 * i);
            }
            if (is_wanted(start_.data() + 4)) {
                start_left_ = start_.size();
                left_ = size;
                return true;
            }
            skip(stream_.get(), size);
        }
        return false;
    }

    bool is_wanted(const char* type) const {
        const auto is = [type](const char* name) { return std::memcmp(type, name, 4) == 0; };
        const bool optional = (type[0] & 0x20) != 0;  // the first letter is a small one
        return !optional || is("pHYs") || (is("tRNS") && with_transparency_);
    }

    Stream stream_;
    bool with_transparency_;
    std::array<char, 8> start_{};  // length and type
    std::size_t start_left_ = 0;   // of them, to be delivered
    std::size_t left_ = kSignature;
};

ssize_t read_chunks(void* chunks, char* bytes, std::size_t size) {
    return static_cast<ssize_t>(static_cast<PixelChunks*>(chunks)->read(bytes, size));
}

int close_chunks(void* chunks) {
    delete static_cast<PixelChunks*>(chunks);
    return 0;
}

Stream open_pixels(const SeekableFile& file, bool with_transparency) {
    auto chunks = std::make_unique<PixelChunks>(file, with_transparency);
    Stream stream(fopencookie(chunks.get(), "rb", {read_chunks, nullptr, nullptr, close_chunks}));
    if (!stream) throw std::bad_alloc();
    static_cast<void>(chunks.release());
    return stream;
}

}  // namespace

std::optional<PagePlace> png_page(const SeekableFile& file) {
    PagePlace page;
    const l_ok failed = freadHeaderPng(open_stream(file).get(), &page.width, &page.height, nullptr,
                                       nullptr, nullptr);
    return failed == 0 ? std::optional(page) : std::nullopt;
}

// Leptonica makes a grey page with a transparent grey white altogether, and takes no notice of a
// transparent colour. So it is not told of them, and the pixels are painted here.
Decoded decode_png(const SeekableFile& file) {
    const std::optional<PngColourKey> key = find_colour_key(open_stream(file).get());
    Decoded decoded{PixOwner(pixReadStreamPng(open_pixels(file, !key).get()))};
    if (decoded.image && key) paint_colour_key(decoded.image.get(), *key);
    return decoded;
}

}  // namespace tool::files
