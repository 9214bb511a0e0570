// Turns by right angles beside Leptonica, libyuv and OpenCV.
#include <libyuv/planar_functions.h>
#include <libyuv/rotate.h>
#include <libyuv/rotate_argb.h>

#include <memory>
#include <opencv2/core.hpp>

#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/geometry.h"

namespace {

using Bytes = std::shared_ptr<std::vector<std::uint8_t>>;

Bytes room(std::size_t size) {
    return std::make_shared<std::vector<std::uint8_t>>(size);
}

// quarters: clockwise, as Leptonica counts.
bench::Sides turn_bitonal(int mode, int quarters) {
    const bench::Page& page = bench::bitonal_page();
    const std::size_t row_words = static_cast<std::size_t>(page.height + 31) / 32;
    const Bytes dst = room(static_cast<std::size_t>(page.stride) * row_words * 32);
    return {.ours =
                [&page, dst, mode] {
                    unsigned stride = 0;
                    kyd_rotate_bitmap(mode, page.data.data(), page.height, page.width, page.stride,
                                      dst->data(), static_cast<int>(dst->size()), &stride);
                },
            .theirs =
                [pix = bench::to_leptonica(page), quarters] {
                    PIX* turned = pixRotateOrth(pix.get(), quarters);
                    pixDestroy(&turned);
                }};
}

std::function<void()> turn_packed(const bench::Page& page, int mode, int pixel_bytes) {
    return [&page, mode, pixel_bytes, dst = room(page.data.size())] {
        int height = 0;
        int width = 0;
        kyd_rotate_color(mode, pixel_bytes, page.data.data(), page.height, page.width, dst->data(),
                         &height, &width);
    };
}

bench::Sides turn_grey(int mode, libyuv::RotationMode rotation) {
    const bench::Page& page = bench::grey_page();
    const int out_stride = rotation == libyuv::kRotate180 ? page.width : page.height;
    return {.ours = turn_packed(page, mode, 1),
            .theirs = [&page, rotation, out_stride, dst = room(page.data.size())] {
                libyuv::RotatePlane(page.data.data(), page.stride, dst->data(), out_stride,
                                    page.width, page.height, rotation);
            }};
}

bench::Sides turn_colour(int mode, int rotation) {
    const bench::Page& page = bench::colour_page();
    cv::setNumThreads(1);
    // OpenCV's type has no form for pixels that are only read.
    const cv::Mat theirs(page.height, page.width, CV_8UC3,
                         const_cast<std::uint8_t*>(page.data.data()));
    return {.ours = turn_packed(page, mode, 3),
            .theirs = [theirs, rotation, turned = std::make_shared<cv::Mat>()] {
                cv::rotate(theirs, *turned, rotation);
            }};
}

// libyuv turns pixels of four bytes only.
bench::Sides half_turn_colour() {
    const bench::Page& page = bench::colour_page();
    const auto pixels =
        static_cast<std::size_t>(page.height) * static_cast<std::size_t>(page.width);
    return {.ours = turn_packed(page, PREPRO_TURN_HALF, 3),
            .theirs = [&page, src = room(4 * pixels), dst = room(4 * pixels)] {
                libyuv::ARGBRotate(src->data(), 4 * page.width, dst->data(), 4 * page.width,
                                   page.width, page.height, libyuv::kRotate180);
            }};
}

constexpr std::size_t kPixels = std::size_t{2480} * 3508;

bool add_turn(const char* name, const char* peer, double required, std::size_t page_bytes,
              std::function<bench::Sides()> prepare) {
    return bench::add({.name = name,
                       .peer = peer,
                       .required = required,
                       .floor_bytes = 2 * page_bytes,
                       .prepare = std::move(prepare)});
}

bool add_bitonal(const char* name, double required, int mode, int quarters) {
    return add_turn(name, "Leptonica pixRotateOrth", required, kPixels / 8,
                    [=] { return turn_bitonal(mode, quarters); });
}

bool add_grey(const char* name, int mode, libyuv::RotationMode rotation) {
    return add_turn(name, "libyuv RotatePlane", 1.0, kPixels,
                    [=] { return turn_grey(mode, rotation); });
}

bool add_colour(const char* name, int mode, int rotation) {
    return add_turn(name, "OpenCV rotate", 3.0, 3 * kPixels,
                    [=] { return turn_colour(mode, rotation); });
}

const bool registered =
    add_bitonal("quarter turn clockwise, bitonal", 10.0, PREPRO_TURN_CLOCKWISE, 1) &&
    add_bitonal("quarter turn counter-clockwise, bitonal", 10.0, PREPRO_TURN_COUNTER_CLOCKWISE,
                3) &&
    add_bitonal("half turn, bitonal", 6.0, PREPRO_TURN_HALF, 2) &&
    add_grey("quarter turn clockwise, grey", PREPRO_TURN_CLOCKWISE, libyuv::kRotate90) &&
    add_grey("quarter turn counter-clockwise, grey", PREPRO_TURN_COUNTER_CLOCKWISE,
             libyuv::kRotate270) &&
    add_grey("half turn, grey", PREPRO_TURN_HALF, libyuv::kRotate180) &&
    add_colour("quarter turn clockwise, colour", PREPRO_TURN_CLOCKWISE, cv::ROTATE_90_CLOCKWISE) &&
    add_colour("quarter turn counter-clockwise, colour", PREPRO_TURN_COUNTER_CLOCKWISE,
               cv::ROTATE_90_COUNTERCLOCKWISE) &&
    add_turn("half turn, colour", "libyuv ARGBRotate", 1.2, 3 * kPixels, half_turn_colour);

}  // namespace
