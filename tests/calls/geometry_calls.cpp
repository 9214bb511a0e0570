#include "calls/calls.h"

namespace calls {
namespace {

template <class Turn>
auto turned(Turn turn, bool quarter) {
    return [=](Desk& desk) {
        const int status =
            turn(desk.bitonal.data(), desk.width, desk.height, desk.stride, desk.out.data(),
                 static_cast<int>(desk.out.size()), &desk.result_stride);
        const int rows = quarter ? desk.width : desk.height;
        return desk.wrote(status, desk.out.data(),
                          static_cast<std::size_t>(rows) * desk.result_stride);
    };
}

auto dispatched(int mode) {
    return turned(
        [mode](const unsigned char* src, int width, int height, auto... more) {
            return kyd_rotate_bitmap(mode, src, height, width, more...);
        },
        mode != PREPRO_TURN_HALF);
}

auto packed(int mode, bool colour) {
    return [=](Desk& desk) {
        const Bytes& source = colour ? desk.colour : desk.grey;
        return desk.wrote(
            kyd_rotate_color(mode, colour ? 3 : 1, source.data(), desk.height, desk.width,
                             desk.out.data(), &desk.numbers[0], &desk.numbers[1]),
            desk.out.data(), source.size());
    };
}

// Into an image of the turned size.
int any_angle(Desk& desk, double angle) {
    const int status =
        rotate_image_dim(desk.height, desk.width, &desk.numbers[0], &desk.numbers[1], angle);
    if (status < 0) return status;
    const int rows = desk.numbers[0];
    const int pixels = desk.numbers[1];
    return desk.wrote_bits(
        rotate_bitonal(desk.bitonal.data(), desk.height, desk.width, desk.stride, desk.out.data(),
                       rows, pixels, (pixels + 31) / 32 * 4, angle),
        rows, pixels);
}

auto bitonal(double angle) {
    return [=](Desk& desk) { return any_angle(desk, angle); };
}

// Into an image of the size of the page, whose corners are cut off and filled.
auto within_page(int pixel_bytes, double angle) {
    return [=](Desk& desk) {
        constexpr unsigned char kBackground[] = {20, 130, 240};
        const Bytes& source = pixel_bytes == 3 ? desk.colour : desk.grey;
        const int stride = pixel_bytes * desk.width;
        return desk.wrote(
            rotate_color(pixel_bytes, kBackground, source.data(), desk.height, desk.width, stride,
                         desk.out.data(), desk.height, desk.width, stride, angle),
            desk.out.data(), source.size());
    };
}

// The corners of a page that was photographed from the lower left, in no order.
int perspective(Desk& desk) {
    const auto x = [&](double part) { return static_cast<int>(part * desk.width); };
    const auto y = [&](double part) { return static_cast<int>(part * desk.height); };
    int c[] = {x(0.99), y(0.71), x(0.02), y(0.97), x(0.93), y(0.06), x(0.11), y(0)};
    int status = check_points_order(&c[0], &c[1], &c[2], &c[3], &c[4], &c[5], &c[6], &c[7]);
    if (status < 0) return status;
    status = give_appropriate_height_and_width(c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7],
                                               &desk.numbers[0], &desk.numbers[1]);
    if (status < 0) return status;
    const int rows = desk.numbers[0];
    const int pixels = desk.numbers[1];
    return desk.wrote(perspective_transformation_color(desk.copy(desk.colour), desk.out.data(),
                                                       desk.width, desk.height, pixels, rows, c[0],
                                                       c[1], c[2], c[3], c[4], c[5], c[6], c[7]),
                      desk.out.data(), std::size_t{3} * static_cast<std::size_t>(rows * pixels));
}

// What is left of the source.
int luma_and_chroma(Desk& desk) {
    return desk.wrote_page(perspective_transformation_color(
        desk.copy(desk.colour), nullptr, desk.width, desk.height, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

const bool added = add_calls({
    {"kyd_rotate_180", Allocates::kNo, turned(kyd_rotate_180, false)},
    {"kyd_rotate_270", Allocates::kNo, turned(kyd_rotate_270, true)},
    {"kyd_rotate_090", Allocates::kNo, turned(kyd_rotate_090, true)},
    {"kyd_rotate_bitmap", Allocates::kNo, dispatched(PREPRO_TURN_CLOCKWISE)},
    {"kyd_rotate_color, grey", Allocates::kNo, packed(PREPRO_TURN_CLOCKWISE, false)},
    {"kyd_rotate_color, colour", Allocates::kNo, packed(PREPRO_TURN_COUNTER_CLOCKWISE, true)},
    {"kyd_rotate_color, half", Allocates::kNo, packed(PREPRO_TURN_HALF, true)},
    {"rotate_bitonal, 3.7 degrees", Allocates::kNo, bitonal(3.7)},
    {"rotate_bitonal, -122 degrees", Allocates::kNo, bitonal(-122)},
    {"rotate_bitonal, a quarter turn", Allocates::kNo, bitonal(-90)},
    {"rotate_color, grey", Allocates::kNo, within_page(1, -3.7)},
    {"rotate_color, grey, steep", Allocates::kNo, within_page(1, 74)},
    {"rotate_color, colour", Allocates::kNo, within_page(3, 211)},
    {"rotate_color, half", Allocates::kNo, within_page(3, 180)},
    {"perspective_transformation_color", Allocates::kNo, perspective},
    {"perspective_transformation_color, source", Allocates::kNo, luma_and_chroma},
});

}  // namespace
}  // namespace calls
