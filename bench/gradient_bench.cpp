// Local thresholds of an A4 page: the gradient method, reader included, beside Sauvola's method
// with the window that is usual at 300 dots per inch.
#include <memory>
#include <opencv2/imgproc.hpp>
#include <opencv2/ximgproc.hpp>

#include "harness.h"
#include "page_reader.h"
#include "vemoprepro/binarization.h"

namespace {

constexpr int kWindow = 31;

cv::Mat mat_of(const bench::Page& page, int type) {
    return cv::Mat(page.height, page.width, type, const_cast<std::uint8_t*>(page.data.data()),
                   static_cast<std::size_t>(page.stride));
}

void sauvola(const cv::Mat& grey, cv::Mat& result) {
    cv::ximgproc::niBlackThreshold(grey, result, 255, cv::THRESH_BINARY, kWindow, 0.2,
                                   cv::ximgproc::BINARIZATION_SAUVOLA);
}

std::function<void()> gradient(int mode, const bench::Page& page, int type) {
    const auto stride = static_cast<std::size_t>((page.width + 31) / 32 * 4);
    const auto bits =
        std::make_shared<std::vector<std::uint8_t>>(stride * static_cast<std::size_t>(page.height));
    return [=, &page] {
        bench::PageReader reader{page.data.data(), static_cast<std::size_t>(page.stride)};
        bi_gradl(mode, bench::PageReader::read, &reader, type, page.width, 0, page.width, 0,
                 page.height, bits->data());
    };
}

const bool kGrey =
    bench::add({.name = "gradient binarization, grey page",
                .peer = "OpenCV ximgproc Sauvola 31",
                .required = 3.0,
                .floor_bytes = bench::grey_page().data.size() * 9 / 8,
                .prepare = [] {
                    const auto result = std::make_shared<cv::Mat>();
                    const cv::Mat source = mat_of(bench::grey_page(), CV_8UC1);
                    return bench::Sides{.ours = gradient(0, bench::grey_page(), PREPRO_SOURCE_GREY),
                                        .theirs = [=] { sauvola(source, *result); }};
                }});

const bool kColour = bench::add(
    {.name = "gradient binarization, colour page, smoothed",
     .peer = "OpenCV cvtColor + ximgproc Sauvola 31",
     .required = 2.5,
     .floor_bytes = bench::colour_page().data.size() * 25 / 24,
     .prepare = [] {
         const auto grey = std::make_shared<cv::Mat>();
         const auto result = std::make_shared<cv::Mat>();
         const cv::Mat source = mat_of(bench::colour_page(), CV_8UC3);
         return bench::Sides{.ours = gradient(1, bench::colour_page(), PREPRO_SOURCE_RGB),
                             .theirs = [=] {
                                 cv::cvtColor(source, *grey, cv::COLOR_RGB2GRAY);
                                 sauvola(*grey, *result);
                             }};
     }});

}  // namespace
