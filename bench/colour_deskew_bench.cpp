// Skew and straightening of grey and colour pages. The skew, which reads the page row by row,
// beside what finds it with the open libraries: a threshold by OpenCV and Leptonica's search. The
// rotation in place beside OpenCV's by bilinear interpolation into a page of its own.
#include <cmath>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/deskew.h"

namespace {

constexpr std::size_t kPixels = std::size_t{2480} * 3508;
constexpr int kScale = 512;

struct Reading {
    const bench::Page& page;
    int y = 0;

    static int read(void* user, int next, unsigned char* row) {
        auto* self = static_cast<Reading*>(user);
        self->y = next == 0 ? 0 : self->y + 1;
        const auto stride = static_cast<std::size_t>(self->page.stride);
        std::memcpy(row, self->page.data.data() + static_cast<std::size_t>(self->y) * stride,
                    stride);
        return 0;
    }
};

cv::Mat as_matrix(const bench::Page& page, int type) {
    // OpenCV's type has no form for pixels that are only read.
    return {page.height, page.width, type, const_cast<std::uint8_t*>(page.data.data())};
}

// Packs bytes of 0 and 255 into Leptonica's bits.
void pack(const cv::Mat& black, PIX* pix) {
    const auto words = static_cast<std::size_t>(pixGetWpl(pix));
    for (int y = 0; y < black.rows; ++y) {
        l_uint32* line = pixGetData(pix) + static_cast<std::size_t>(y) * words;
        const std::uint8_t* row = black.ptr(y);
        for (int x = 0; x < black.cols; x += 32) {
            l_uint32 word = 0;
            for (int i = 0; i < 32; ++i)
                word = word << 1 | (x + i < black.cols ? row[x + i] & 1U : 0U);
            line[x / 32] = word;
        }
    }
}

bench::Sides find_skew(const bench::Page& page, int format) {
    cv::setNumThreads(1);
    auto ours = [&page, format] {
        Reading reading{page};
        int yskew, scale;
        sk_color_mem(Reading::read, &reading, format, page.height, page.width, &yskew, &scale);
    };
    const std::shared_ptr<PIX> pix(pixCreate(page.width, page.height, 1),
                                   [](PIX* held) { pixDestroy(&held); });
    // What brings the bytes into Leptonica's form is not counted.
    const cv::Mat source = as_matrix(page, format == PREPRO_SOURCE_GREY ? CV_8UC1 : CV_8UC3);
    const auto black = std::make_shared<cv::Mat>();
    const auto threshold = [source, black, format] {
        cv::Mat grey = source;
        if (format != PREPRO_SOURCE_GREY) cv::cvtColor(source, grey, cv::COLOR_RGB2GRAY);
        cv::threshold(grey, *black, 127, 255, cv::THRESH_BINARY_INV);
    };
    threshold();
    pack(*black, pix.get());
    return {.ours = ours, .theirs = [threshold, pix] {
                threshold();
                float angle, confidence;
                pixFindSkew(pix.get(), &angle, &confidence);
            }};
}

// Turned over and over in its buffer: the time does not depend on what the page shows.
bench::Sides straighten(const bench::Page& page, int pixel_bytes, int yskew) {
    cv::setNumThreads(1);
    int height, width;
    skrotdim(yskew, kScale, page.height, page.width, &height, &width);
    const auto buffer = std::make_shared<std::vector<std::uint8_t>>(page.data);
    buffer->resize(static_cast<std::size_t>(height) *
                   static_cast<std::size_t>(width * pixel_bytes));
    const double angle = std::atan(static_cast<double>(yskew) / kScale);
    cv::Mat map = cv::getRotationMatrix2D(
        cv::Point2f(static_cast<float>(page.width) / 2, static_cast<float>(page.height) / 2),
        -angle * 180 / CV_PI, 1);
    map.at<double>(0, 2) += (width - page.width) / 2.0;
    map.at<double>(1, 2) += (height - page.height) / 2.0;
    return {.ours =
                [=, &page] {
                    skrotimg_mem(yskew, kScale, pixel_bytes, buffer->data(), page.height,
                                 page.width, height, width, nullptr);
                },
            .theirs =
                [=, source = as_matrix(page, pixel_bytes == 1 ? CV_8UC1 : CV_8UC3),
                 turned = std::make_shared<cv::Mat>()] {
                    cv::warpAffine(source, *turned, map, {width, height}, cv::INTER_LINEAR,
                                   cv::BORDER_CONSTANT, cv::Scalar::all(255));
                }};
}

bool add_skew(const char* name, const bench::Page& (*page)(), int format, std::size_t bytes) {
    return bench::add({.name = name,
                       .peer = "OpenCV threshold + Leptonica pixFindSkew",
                       .required = 3.0,
                       .floor_bytes = 2 * bytes,
                       .prepare = [page, format] { return find_skew(page(), format); }});
}

bool add_rotation(const char* name, double required, const bench::Page& (*page)(), int pixel_bytes,
                  int yskew) {
    return bench::add({.name = name,
                       .peer = "OpenCV warpAffine",
                       .required = required,
                       .floor_bytes = 2 * kPixels * static_cast<std::size_t>(pixel_bytes),
                       .prepare = [=] { return straighten(page(), pixel_bytes, yskew); }});
}

const bool registered =
    add_skew("skew, grey, row by row", bench::grey_page, PREPRO_SOURCE_GREY, kPixels) &&
    add_skew("skew, colour, row by row", bench::colour_page, PREPRO_SOURCE_RGB, 3 * kPixels) &&
    add_rotation("straighten in place, grey, 13 units", 3.0, bench::grey_page, 1, 13) &&
    add_rotation("straighten in place, grey, 40 units", 3.0, bench::grey_page, 1, 40) &&
    add_rotation("straighten in place, colour, 13 units", 2.0, bench::colour_page, 3, 13) &&
    add_rotation("straighten in place, colour, 40 units", 2.0, bench::colour_page, 3, 40);

}  // namespace
