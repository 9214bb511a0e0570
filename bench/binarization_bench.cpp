// Thresholds and the grey preparation of an A4 page, reader included: the library copies every row
// out of the page through a callback, the peers are handed the page.
#include <libyuv.h>

#include <memory>
#include <opencv2/imgproc.hpp>

#include "harness.h"
#include "page_reader.h"
#include "vemoprepro/binarization.h"

namespace {

cv::Mat grey_mat() {
    const bench::Page& page = bench::grey_page();
    return cv::Mat(page.height, page.width, CV_8UC1, const_cast<std::uint8_t*>(page.data.data()),
                   static_cast<std::size_t>(page.stride));
}

std::size_t bitonal_size(const bench::Page& page) {
    return static_cast<std::size_t>((page.width + 31) / 32 * 4) *
           static_cast<std::size_t>(page.height);
}

bench::Sides threshold_sides(int thresh, int opencv_mode) {
    const bench::Page& page = bench::grey_page();
    const auto bits = std::make_shared<std::vector<std::uint8_t>>(bitonal_size(page));
    const auto result = std::make_shared<cv::Mat>();
    const cv::Mat source = grey_mat();
    return {
        .ours =
            [=, &page] {
                bench::PageReader reader{page.data.data(), static_cast<std::size_t>(page.stride)};
                bi_thresh(0, thresh, bench::PageReader::read, &reader, PREPRO_SOURCE_GREY,
                          page.width, 0, page.width, 0, page.height, bits->data());
            },
        .theirs = [=] { cv::threshold(source, *result, 127, 255, opencv_mode); }};
}

std::function<void()> grey_of_colour_page(unsigned char smooth) {
    const bench::Page& page = bench::colour_page();
    const auto size = static_cast<std::size_t>(page.width) * static_cast<std::size_t>(page.height);
    const auto grey = std::make_shared<std::vector<std::uint8_t>>(size);
    return [=, &page] {
        bench::PageReader reader{page.data.data(), static_cast<std::size_t>(page.stride)};
        bi_color2greybuf(smooth, bench::PageReader::read, &reader, nullptr, PREPRO_SOURCE_RGB,
                         page.width, 300, 0, page.width, 0, page.height, grey->data(),
                         static_cast<int>(grey->size()), 1, 0);
    };
}

std::function<void()> libyuv_grey(cv::Mat grey) {
    const bench::Page& page = bench::colour_page();
    return [=, &page] {
        libyuv::RAWToJ400(page.data.data(), page.stride, grey.data, static_cast<int>(grey.step),
                          page.width, page.height);
    };
}

cv::Mat empty_grey() {
    return cv::Mat(bench::colour_page().height, bench::colour_page().width, CV_8UC1);
}

const bool kFixed = bench::add({.name = "threshold, grey page",
                                .peer = "OpenCV threshold (8-bit out)",
                                .required = 1.0,
                                .floor_bytes = bench::grey_page().data.size() * 9 / 8,
                                .prepare = [] { return threshold_sides(128, cv::THRESH_BINARY); }});

const bool kOtsu =
    bench::add({.name = "Otsu threshold, grey page",
                .peer = "OpenCV threshold OTSU (8-bit out)",
                .required = 3.0,
                .floor_bytes = bench::grey_page().data.size() * 9 / 8,
                .prepare = [] { return threshold_sides(0, cv::THRESH_BINARY | cv::THRESH_OTSU); }});

const bool kGrey = bench::add({.name = "colour page to grey",
                               .peer = "libyuv RAWToJ400",
                               .required = 0.5,
                               .floor_bytes = bench::colour_page().data.size() * 4 / 3,
                               .prepare = [] {
                                   return bench::Sides{.ours = grey_of_colour_page(0),
                                                       .theirs = libyuv_grey(empty_grey())};
                               }});

const bool kSmoothed =
    bench::add({.name = "colour page to smoothed grey",
                .peer = "libyuv RAWToJ400 + OpenCV blur",
                .required = 1.0,
                .floor_bytes = bench::colour_page().data.size() * 4 / 3,
                .prepare = [] {
                    const cv::Mat grey = empty_grey();
                    const auto blurred = std::make_shared<cv::Mat>();
                    return bench::Sides{.ours = grey_of_colour_page(248),
                                        .theirs = [to_grey = libyuv_grey(grey), grey, blurred] {
                                            to_grey();
                                            cv::blur(grey, *blurred, cv::Size(3, 3));
                                        }};
                }});

}  // namespace
