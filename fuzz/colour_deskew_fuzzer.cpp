// The skew and the deskew rotation of grey and colour pages beside their slow models, on small
// pages with crafted sizes, formats, skews and rooms.
//
// Input: 10 bytes of arguments, then pixels, repeated over the page.
#include <cstdint>
#include <cstdlib>

#include "models/colour_deskew_comparison.h"

namespace {

constexpr std::size_t kArguments = 10;

void check(bool holds) {
    if (!holds) std::abort();
}

model::PackedPage page_of(int pixel_bytes, int height, int width, const std::uint8_t* pixels,
                          std::size_t count) {
    model::PackedPage page{pixel_bytes, height, width, {}};
    page.bytes.resize(model::offset(height, width * pixel_bytes, 0));
    for (std::size_t i = 0; i < page.bytes.size(); ++i)
        page.bytes[i] = static_cast<std::uint8_t>(pixels[i % count] + i / count * 29);
    return page;
}

void measure(const std::uint8_t* data, std::size_t size) {
    const int format = data[1] % 4 + (data[1] == 7 ? 2 : 0);
    const int height = data[2] % 90 + 28;
    const int width = data[3] % 150 + 28;
    const model::PackedPage page =
        page_of(format == 1 ? 1 : 3, height, width, data + kArguments, size - kArguments);
    check(model::estimated_colour_skew(page, format) == model::modelled_colour_skew(page, format));
}

void turn(const std::uint8_t* data, std::size_t size) {
    const int pixel_bytes = 1 + data[1] % 4;
    const int height = 1 + data[2] % 128;
    const int width = 1 + data[3] % 160;
    const model::PackedPage page =
        page_of(pixel_bytes, height, width, data + kArguments, size - kArguments);
    model::Turn turn;
    turn.skew = static_cast<std::int8_t>(data[4]);
    if (data[5] % 8 == 0) turn.scale = static_cast<std::int8_t>(data[6]) * 8;
    skrotdim(turn.skew, turn.scale, height, width, &turn.out_height, &turn.out_width);
    turn.out_height += data[7] % 4 == 0 ? data[8] % 16 - 1 : 0;
    turn.out_width += data[7] % 3 == 0 ? data[9] - 1 : 0;
    if (data[7] % 2 == 0) turn.background = {data[6], data[7], data[8], data[9]};
    check(model::turned(page, turn) == model::modelled_turn(page, turn));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= kArguments) return 0;
    if (data[0] % 2 == 0) {
        measure(data, size);
    } else {
        turn(data, size);
    }
    return 0;
}
