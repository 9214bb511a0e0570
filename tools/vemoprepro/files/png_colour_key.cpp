// In the chain of chunks of a PNG file (see png_file.cpp) the first one, IHDR, has the depth and
// the type of colour, and tRNS lies in front of the pixels, which are in IDAT.
#include "files/png_colour_key.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "files/file_view.h"

namespace tool::files {
namespace {

constexpr std::size_t kSignature = 8, kLengthAndType = 8, kCheckSum = 4;
constexpr int kGrey = 0;
constexpr int kRgb = 2;
constexpr int kDeepest = 16;  // bits per sample of any PNG file

std::uint32_t big_endian(const std::uint8_t* bytes, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes[i];
    return value;
}

// The first bytes of a chunk, as many as an IHDR chunk has up to the type of colour.
struct ChunkStart {
    std::array<std::uint8_t, 18> bytes{};

    std::size_t size() const { return big_endian(bytes.data(), 4); }
    // How much of its contents is here.
    std::size_t read() const { return std::min(size(), bytes.size() - kLengthAndType); }
    bool is(const char* type) const { return std::memcmp(bytes.data() + 4, type, 4) == 0; }
    const std::uint8_t* contents() const { return bytes.data() + 8; }
};

bool read_start(std::FILE* file, ChunkStart& chunk) {
    return std::fread(chunk.bytes.data(), 1, kLengthAndType, file) == kLengthAndType &&
           std::fread(chunk.bytes.data() + kLengthAndType, 1, chunk.read(), file) == chunk.read();
}

// The sample of an image that the key's sample becomes when 16 bits per colour become 8.
std::uint32_t upper_byte(std::uint32_t sample, int depth) {
    return depth == 16 ? sample >> 8 : sample & 255;
}

void paint_greys(PIX* image, std::uint32_t key) {
    const int depth = pixGetDepth(image);
    const l_uint32 white = (l_uint32{1} << depth) - 1;
    for (int y = 0; y < pixGetHeight(image); ++y) {
        for (int x = 0; x < pixGetWidth(image); ++x) {
            l_uint32 value = 0;
            pixGetPixel(image, x, y, &value);
            if (value == key) pixSetPixel(image, x, y, white);
        }
    }
}

void paint_colours(PIX* image, std::uint32_t key) {
    l_uint32* line = pixGetData(image);
    for (int y = 0; y < pixGetHeight(image); ++y, line += pixGetWpl(image)) {
        for (int x = 0; x < pixGetWidth(image); ++x) {
            if (line[x] >> 8 == key) line[x] |= 0xFFFFFF00;
        }
    }
}

}  // namespace

std::optional<PngColourKey> find_colour_key(std::FILE* file) {
    PngColourKey key;
    ChunkStart chunk;
    int colours = -1;
    for (skip(file, kSignature); read_start(file, chunk);
         skip(file, chunk.size() - chunk.read() + kCheckSum)) {
        if (chunk.is("IDAT")) break;
        if (chunk.is("IHDR")) {
            key.depth = chunk.contents()[8];
            colours = key.depth <= kDeepest ? chunk.contents()[9] : -1;
        }
        const std::size_t wanted = colours == kGrey ? 1 : colours == kRgb ? 3 : 0;
        if (!chunk.is("tRNS") || wanted == 0 || chunk.size() != 2 * wanted) continue;
        for (std::size_t i = 0; i < wanted; ++i) {
            key.samples.push_back(big_endian(chunk.contents() + 2 * i, 2));
        }
        return key;
    }
    return std::nullopt;
}

void paint_colour_key(PIX* image, const PngColourKey& key) {
    const int depth = pixGetDepth(image);
    if (key.samples.size() == 3) {
        if (depth == 32) {
            paint_colours(image, upper_byte(key.samples[0], key.depth) << 16 |
                                     upper_byte(key.samples[1], key.depth) << 8 |
                                     upper_byte(key.samples[2], key.depth));
        }
    } else if (depth == 1) {
        if (key.samples[0] == 0) pixClearAll(image);  // all that is black is transparent
    } else if (depth == key.depth) {
        paint_greys(image, key.samples[0]);
    }
}

}  // namespace tool::files
