// Turning by any angle and straightening of photographs beside OpenCV.
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "harness.h"
#include "vemoprepro/geometry.h"

namespace {

using Bytes = std::shared_ptr<std::vector<std::uint8_t>>;

constexpr std::size_t kPixels = std::size_t{2480} * 3508;

Bytes room(std::size_t size) {
    return std::make_shared<std::vector<std::uint8_t>>(size);
}

// OpenCV's type has no form for pixels that are only read.
cv::Mat mat_of(const bench::Page& page, int type) {
    cv::setNumThreads(1);
    return {page.height, page.width, type, const_cast<std::uint8_t*>(page.data.data())};
}

// The peer turns about the centre, too, into an image of the size of the page.
std::function<void()> warp(const cv::Mat& page, double angle) {
    const cv::Point2f centre(static_cast<float>(page.cols / 2), static_cast<float>(page.rows / 2));
    return [page, turn = cv::getRotationMatrix2D(centre, -angle, 1),
            turned = std::make_shared<cv::Mat>()] {
        cv::warpAffine(page, *turned, turn, page.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT,
                       cv::Scalar::all(255));
    };
}

bench::Sides rotate_pixels(const bench::Page& page, int pixel_bytes, double angle) {
    return {.ours =
                [&page, pixel_bytes, angle, dst = room(page.data.size())] {
                    constexpr std::uint8_t kWhite[] = {255, 255, 255};
                    rotate_color(pixel_bytes, kWhite, page.data.data(), page.height, page.width,
                                 page.stride, dst->data(), page.height, page.width, page.stride,
                                 angle);
                },
            .theirs = warp(mat_of(page, pixel_bytes == 1 ? CV_8UC1 : CV_8UC3), angle)};
}

// OpenCV has no bitonal images: it turns the same page with a byte for a pixel.
bench::Sides rotate_bits(double angle) {
    const bench::Page& page = bench::bitonal_page();
    cv::Mat bytes(page.height, page.width, CV_8UC1);
    for (int y = 0; y < page.height; ++y) {
        for (int x = 0; x < page.width; ++x) {
            const std::size_t at =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(page.stride) +
                static_cast<std::size_t>(x / 8);
            bytes.at<std::uint8_t>(y, x) = (page.data[at] >> (7 - x % 8) & 1) != 0 ? 0 : 255;
        }
    }
    return {.ours =
                [&page, angle, dst = room(page.data.size())] {
                    rotate_bitonal(page.data.data(), page.height, page.width, page.stride,
                                   dst->data(), page.height, page.width, page.stride, angle);
                },
            .theirs = warp(bytes, angle)};
}

// A page photographed at an angle. The straightening leaves luma and chroma in its source, so it
// works on what it left before: the colours differ, the work does not.
bench::Sides straighten() {
    const bench::Page& page = bench::colour_page();
    const int w = page.width;
    const int h = page.height;
    const int x[] = {w / 12, w - w / 9, w - w / 40, w / 50};
    const int y[] = {h / 20, h / 11, h - h / 30, h - h / 15};
    std::vector<cv::Point2f> corners;
    for (int i = 0; i < 4; ++i)
        corners.emplace_back(static_cast<float>(x[i]), static_cast<float>(y[i]));
    const auto fw = static_cast<float>(w);
    const auto fh = static_cast<float>(h);
    const cv::Mat map = cv::getPerspectiveTransform(
        corners, std::vector<cv::Point2f>{{0, 0}, {fw, 0}, {fw, fh}, {0, fh}});
    const auto src = std::make_shared<std::vector<std::uint8_t>>(page.data);
    return {.ours =
                [=, dst = room(page.data.size())] {
                    perspective_transformation_color(src->data(), dst->data(), w, h, w, h, x[0],
                                                     y[0], x[1], y[1], x[2], y[2], x[3], y[3]);
                },
            .theirs =
                [map, theirs = mat_of(page, CV_8UC3), out = std::make_shared<cv::Mat>()] {
                    cv::warpPerspective(theirs, *out, map, theirs.size(), cv::INTER_CUBIC,
                                        cv::BORDER_REPLICATE);
                }};
}

bool add_rotation(const char* name, double required, std::size_t page_bytes,
                  std::function<bench::Sides()> prepare) {
    return bench::add({.name = name,
                       .peer = "OpenCV warpAffine",
                       .required = required,
                       .floor_bytes = 2 * page_bytes,
                       .prepare = std::move(prepare)});
}

const bool registered = add_rotation("any angle, 3.7 degrees, grey", 3.0, kPixels,
                                     [] { return rotate_pixels(bench::grey_page(), 1, 3.7); }) &&
                        add_rotation("any angle, 35 degrees, grey", 3.0, kPixels,
                                     [] { return rotate_pixels(bench::grey_page(), 1, 35); }) &&
                        add_rotation("any angle, 3.7 degrees, colour", 2.0, 3 * kPixels,
                                     [] { return rotate_pixels(bench::colour_page(), 3, 3.7); }) &&
                        add_rotation("any angle, 35 degrees, colour", 2.0, 3 * kPixels,
                                     [] { return rotate_pixels(bench::colour_page(), 3, 35); }) &&
                        add_rotation("any angle, 3.7 degrees, bitonal", 6.0, kPixels / 8,
                                     [] { return rotate_bits(3.7); }) &&
                        add_rotation("any angle, 35 degrees, bitonal", 6.0, kPixels / 8,
                                     [] { return rotate_bits(35); }) &&
                        bench::add({.name = "perspective, colour",
                                    .peer = "OpenCV warpPerspective, cubic",
                                    .required = 3.0,
                                    .floor_bytes = 6 * kPixels,
                                    .prepare = straighten});

}  // namespace
