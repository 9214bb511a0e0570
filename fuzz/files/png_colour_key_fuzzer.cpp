// The transparent colour of a PNG file: without its chunk the file is as it was before and behind
// it, and in an image of the file's depth the pixels of that colour, and no others, become white.
//
// Input: the file.
#include <algorithm>
#include <vector>

#include "files/pix.h"
#include "files/png_colour_key.h"
#include "memory_file.h"

namespace {

using fuzz::check;
using tool::files::PngColourKey;

void check_file_without(std::FILE* file, const PngColourKey& key, const std::uint8_t* data,
                        std::size_t size) {
    const std::vector<std::uint8_t> rest = tool::files::without_colour_key(file, key);
    if (key.chunk_at + key.chunk_size > size) {
        check(rest.empty());
        return;
    }
    check(rest.size() + key.chunk_size == size);
    const auto chunk = rest.begin() + static_cast<std::ptrdiff_t>(key.chunk_at);
    check(std::equal(rest.begin(), chunk, data));
    check(std::equal(chunk, rest.end(), data + key.chunk_at + key.chunk_size));
}

void check_painting(const PngColourKey& key) {
    const bool colour = key.samples.size() == 3;
    const int depth = colour ? 32 : key.depth;
    if (!colour && depth != 2 && depth != 4 && depth != 8) return;
    const l_uint32 white = colour ? 0xFFFFFF00 : (1U << depth) - 1;
    l_uint32 wanted = key.samples[0];
    if (colour) {
        const auto part = [&](std::size_t i) {
            return key.depth == 16 ? key.samples[i] >> 8 : key.samples[i] & 255;
        };
        wanted = part(0) << 24 | part(1) << 16 | part(2) << 8;
    }
    const tool::files::PixOwner image = tool::files::make_pix(3, 2, depth);
    const l_uint32 others[] = {wanted ^ (colour ? 0x100U : 1U), white, 0};
    const auto set = [&](int x, int y, l_uint32 value) {
        pixSetPixel(image.get(), x, y, colour ? value : value & white);
    };
    for (int x = 0; x < 3; ++x) {
        set(x, 0, wanted);
        set(x, 1, others[x]);
    }
    const tool::files::PixOwner before(pixCopy(nullptr, image.get()));
    tool::files::paint_colour_key(image.get(), key);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            l_uint32 old = 0, now = 0;
            pixGetPixel(before.get(), x, y, &old);
            pixGetPixel(image.get(), x, y, &now);
            check(now == (old == wanted ? white : old));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const fuzz::File file = fuzz::open_bytes(data, size);
    const auto key = tool::files::find_colour_key(file.get());
    if (!key) return 0;
    check(key->samples.size() == 1 || key->samples.size() == 3);
    check_file_without(file.get(), *key, data, size);
    check_painting(*key);
    return 0;
}
