// The Sobel-statistics variant on a grey A4 page, beside the local threshold that OpenCV has.
#include "binarization/statistics/sobel_statistics.h"

#include <memory>
#include <opencv2/ximgproc.hpp>

#include "harness.h"

namespace {

bench::Sides sides() {
    const bench::Page& page = bench::grey_page();
    const auto stride = common::bitonal_stride(page.width);
    const auto bits = std::make_shared<std::vector<std::uint8_t>>(
        static_cast<std::size_t>(stride) * static_cast<std::size_t>(page.height));
    const auto result = std::make_shared<cv::Mat>();
    const cv::Mat source(page.height, page.width, CV_8UC1,
                         const_cast<std::uint8_t*>(page.data.data()),
                         static_cast<std::size_t>(page.stride));
    return {.ours =
                [=, &page] {
                    binarization::binarize_by_sobel_statistics(
                        {page.data.data(), page.height, page.width, page.stride},
                        {.black1 = 128, .black2 = 96},
                        {bits->data(), page.height, page.width, stride});
                },
            .theirs =
                [=] {
                    cv::ximgproc::niBlackThreshold(source, *result, 255, cv::THRESH_BINARY, 31, 0.2,
                                                   cv::ximgproc::BINARIZATION_SAUVOLA);
                }};
}

const bool kSobelStatistics = bench::add({.name = "Sobel statistics, grey page",
                                          .peer = "OpenCV niBlackThreshold (Sauvola, 31)",
                                          .required = 3.0,
                                          .floor_bytes = bench::grey_page().data.size() * 9 / 8,
                                          .prepare = sides});

}  // namespace
