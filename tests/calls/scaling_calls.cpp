#include "calls/calls.h"

namespace calls {
namespace {

// Sizes as shares of the page's.
struct Size {
    int up_height, down_height, up_width, down_width;
};

constexpr Size kDoubled{1, 4, 2, 1};    // twice the width
constexpr Size kEnlarged{4, 3, 3, 2};   // 4 / 3 of the height, 3 / 2 of the width
constexpr Size kTurned{73, 100, 5, 4};  // ratios without a cycle of their own

template <class Scale>
auto scaled(Scale scale, const Bytes Desk::*page, int pixel_bytes, Size size, auto... threads) {
    return [=](Desk& desk) {
        const int height = desk.height * size.up_height / size.down_height;
        const int width = desk.width * size.up_width / size.down_width;
        // 0 bytes a pixel: bits
        const int from = pixel_bytes == 0 ? desk.stride : desk.width * pixel_bytes;
        const int to = pixel_bytes == 0 ? (width + 31) / 32 * 4 : width * pixel_bytes;
        const int status = scale((desk.*page).data(), desk.height, desk.width, from,
                                 desk.out.data(), height, width, to, threads...);
        return desk.wrote(status, desk.out.data(),
                          static_cast<std::size_t>(height) * static_cast<std::size_t>(to));
    };
}

const bool added = add_calls({
    {"bilinear_grey", Allocates::kYes, scaled(bilinear_grey, &Desk::grey, 1, kTurned)},
    {"bilinear_grey, enlarged", Allocates::kYes, scaled(bilinear_grey, &Desk::grey, 1, kEnlarged)},
    {"bicubic_grey", Allocates::kYes, scaled(bicubic_grey, &Desk::grey, 1, kTurned)},
    {"bicubic_grey, enlarged", Allocates::kYes, scaled(bicubic_grey, &Desk::grey, 1, kEnlarged)},
    {"bicubic_grey, doubled", Allocates::kYes, scaled(bicubic_grey, &Desk::grey, 1, kDoubled)},
    {"bicubic_grey_with_threads", Allocates::kYes,
     scaled(bicubic_grey_with_threads, &Desk::grey, 1, kTurned, 3)},
    {"bilinear_rgb", Allocates::kYes, scaled(bilinear_rgb, &Desk::colour, 3, kTurned)},
    {"bicubic_rgb", Allocates::kYes, scaled(bicubic_rgb, &Desk::colour, 3, kTurned)},
    {"bicubic_rgb_with_threads", Allocates::kYes,
     scaled(bicubic_rgb_with_threads, &Desk::colour, 3, kDoubled, 2)},
    {"bicubic_rgb_o", Allocates::kYes, scaled(bicubic_rgb_o, &Desk::colour, 3, kTurned)},
    {"bicubic_rgb_o_with_threads", Allocates::kYes,
     scaled(bicubic_rgb_o_with_threads, &Desk::colour, 3, kDoubled, 2)},
    {"bilinear_bitonal", Allocates::kYes, scaled(bilinear_bitonal, &Desk::bitonal, 0, kEnlarged)},
    {"bicubic_bitonal", Allocates::kYes, scaled(bicubic_bitonal, &Desk::bitonal, 0, kEnlarged)},
    {"bicubic_bitonal_with_threads", Allocates::kYes,
     scaled(bicubic_bitonal_with_threads, &Desk::bitonal, 0, kTurned, 2)},
});

}  // namespace
}  // namespace calls
