// The transparent colour of a PNG file.
//
// Input: the file.
#include "files/pix.h"
#include "files/png_colour_key.h"
#include "memory_file.h"

namespace {

using fuzz::check;
using tool::files::PngColourKey;

// An image of the file's depth is painted without harm; what becomes white, the tests of formats
// say.
void paint(const PngColourKey& key) {
    const int depth = key.samples.size() == 3 ? 32 : key.depth;
    if (depth != 1 && depth != 2 && depth != 4 && depth != 8 && depth != 32) return;
    const tool::files::PixOwner image = tool::files::make_pix(3, 2, depth);
    tool::files::paint_colour_key(image.get(), key);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const fuzz::File file = fuzz::open_bytes(data, size);
    const auto key = tool::files::find_colour_key(file.get());
    if (!key) return 0;
    check(key->samples.size() == 1 || key->samples.size() == 3);
    paint(*key);
    return 0;
}
