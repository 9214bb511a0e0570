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

const bool registered =
    bench::add({.name = "quarter turn clockwise, bitonal",
                .peer = "Leptonica pixRotateOrth",
                .required = 10.0,
                .floor_bytes = 2 * kPixels / 8,
                .prepare = [] { return turn_bitonal(PREPRO_TURN_CLOCKWISE, 1); }}) &&
    bench::add({.name = "quarter turn counter-clockwise, bitonal",
                .peer = "Leptonica pixRotateOrth",
                .required = 10.0,
                .floor_bytes = 2 * kPixels / 8,
                .prepare = [] { return turn_bitonal(PREPRO_TURN_COUNTER_CLOCKWISE, 3); }}) &&
    bench::add({.name = "half turn, bitonal",
                .peer = "Leptonica pixRotateOrth",
                .required = 6.0,
                .floor_bytes = 2 * kPixels / 8,
                .prepare = [] { return turn_bitonal(PREPRO_TURN_HALF, 2); }}) &&
    bench::add({.name = "quarter turn clockwise, grey",
                .peer = "libyuv RotatePlane",
                .required = 1.0,
                .floor_bytes = 2 * kPixels,
                .prepare = [] { return turn_grey(PREPRO_TURN_CLOCKWISE, libyuv::kRotate90); }}) &&
    bench::add(
        {.name = "quarter turn counter-clockwise, grey",
         .peer = "libyuv RotatePlane",
         .required = 1.0,
         .floor_bytes = 2 * kPixels,
         .prepare = [] { return turn_grey(PREPRO_TURN_COUNTER_CLOCKWISE, libyuv::kRotate270); }}) &&
    bench::add({.name = "half turn, grey",
                .peer = "libyuv RotatePlane",
                .required = 1.0,
                .floor_bytes = 2 * kPixels,
                .prepare = [] { return turn_grey(PREPRO_TURN_HALF, libyuv::kRotate180); }}) &&
    bench::add(
        {.name = "quarter turn clockwise, colour",
         .peer = "OpenCV rotate",
         .required = 3.0,
         .floor_bytes = 6 * kPixels,
         .prepare = [] { return turn_colour(PREPRO_TURN_CLOCKWISE, cv::ROTATE_90_CLOCKWISE); }}) &&
    bench::add({.name = "quarter turn counter-clockwise, colour",
                .peer = "OpenCV rotate",
                .required = 3.0,
                .floor_bytes = 6 * kPixels,
                .prepare =
                    [] {
                        return turn_colour(PREPRO_TURN_COUNTER_CLOCKWISE,
                                           cv::ROTATE_90_COUNTERCLOCKWISE);
                    }}) &&
    bench::add({.name = "half turn, colour",
                .peer = "libyuv ARGBRotate",
                .required = 1.2,
                .floor_bytes = 6 * kPixels,
                .prepare = half_turn_colour});

}  // namespace
