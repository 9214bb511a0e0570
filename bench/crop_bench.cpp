// Border cropping of a page with a scanner's border beside what Leptonica and OpenCV offer for it.
//
// OpenCV has no such operation. Its recipe is the shortest that finds a border: pixels by a
// threshold, a margin of ink around them, one flood fill from the corner of that, a dilation, the
// rectangle of the rest, and white painted over the mask. It follows no shadows. All its images
// stay allocated from call to call. Both sides begin with a copy of the page and change that.
#include <algorithm>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/cleaning.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kDark = 100;
constexpr int kLight = 200;
constexpr int kStep = 60;

// How far a ragged border reaches into the page, of about `width` pixels.
int ragged(int width, std::minstd_rand& random) {
    return width + static_cast<int>(random() % 6);
}

// The lid on the left and at the top, a lighter shadow that fades out on the right.
bench::Page bordered(const bench::Page& page, int bytes) {
    bench::Page result = page;
    std::minstd_rand random(1);
    for (int y = 0; y < page.height; ++y) {
        std::uint8_t* const row = result.data.data() + static_cast<std::ptrdiff_t>(y) * page.stride;
        const int left = y < 50 ? page.width : ragged(70, random);
        for (int x = 0; x < left * bytes; ++x)
            row[x] = static_cast<std::uint8_t>(10 + random() % 9);
        for (int i = 1; i <= 90 * bytes; ++i) {
            std::uint8_t& pixel = row[page.width * bytes - i];
            pixel = std::min(pixel, static_cast<std::uint8_t>(60 + (i - 1) / bytes * 2));
        }
    }
    return result;
}

bench::Page bordered_bitonal(const bench::Page& page) {
    bench::Page result = page;
    std::minstd_rand random(1);
    for (int y = 0; y < page.height; ++y) {
        std::uint8_t* const row = result.data.data() + static_cast<std::ptrdiff_t>(y) * page.stride;
        const auto ink = [&](int x) { row[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8)); };
        const int left = y < 50 ? page.width : ragged(70, random);
        for (int x = 0; x < left; ++x) ink(x);
        for (int x = page.width - ragged(40, random); x < page.width; ++x) ink(x);
    }
    return result;
}

// Sets 255 outside of the pixels that the flood from outside reaches through those below kLight.
struct Recipe {
    cv::Mat grey, ink, framed, border;

    cv::Rect operator()(cv::Mat& page) {
        if (page.channels() == 3) {
            cv::cvtColor(page, grey, cv::COLOR_RGB2GRAY);
        } else {
            grey = page;
        }
        cv::threshold(grey, ink, kLight - 1, 255, cv::THRESH_BINARY_INV);
        cv::copyMakeBorder(ink, framed, 1, 1, 1, 1, cv::BORDER_CONSTANT, cv::Scalar(255));
        cv::floodFill(framed, {0, 0}, cv::Scalar(128), nullptr, {}, {}, 8);
        cv::compare(framed({1, 1, page.cols, page.rows}), cv::Scalar(128), border, cv::CMP_EQ);
        cv::dilate(border, border, cv::getStructuringElement(cv::MORPH_RECT, {17, 17}));
        page.setTo(cv::Scalar::all(255), border);
        cv::bitwise_not(border, border);
        return cv::boundingRect(border);
    }
};

bool add_crop(const char* name, int type, const bench::Page& (*source)()) {
    return bench::add(
        {.name = name,
         .peer = "OpenCV threshold, floodFill, dilate",
         .required = 1.5,
         .floor_bytes = 2 * source().data.size(),
         .prepare = [=] {
             cv::setNumThreads(1);
             const int bytes = type == PREPRO_CROP_GREY ? 1 : 3;
             const auto page = std::make_shared<bench::Page>(bordered(source(), bytes));
             const auto mine = std::make_shared<Bytes>(page->data);
             const auto others = std::make_shared<Bytes>(page->data);
             const auto recipe = std::make_shared<Recipe>();
             return bench::Sides{
                 .ours =
                     [=] {
                         int box[4];
                         std::memcpy(mine->data(), page->data.data(), mine->size());
                         cropimg(mine->data(), type, page->height, page->width, page->stride, kDark,
                                 kLight, kStep, box, box + 1, box + 2, box + 3);
                     },
                 .theirs =
                     [=] {
                         std::memcpy(others->data(), page->data.data(), others->size());
                         cv::Mat image(page->height, page->width, CV_8UC(bytes), others->data(),
                                       static_cast<std::size_t>(page->stride));
                         (*recipe)(image);
                     }};
         }});
}

const bool grey = add_crop("border of a grey page", PREPRO_CROP_GREY, bench::grey_page);
const bool rgb = add_crop("border of a colour page", PREPRO_CROP_RGB, bench::colour_page);
const bool bgr =
    add_crop("border of a colour page, blue first", PREPRO_CROP_BGR, bench::colour_page);

struct BitonalCase {
    bench::Page page = bordered_bitonal(bench::bitonal_page());
    Bytes target = Bytes(page.data.size());

    void crop() {
        cropbmp(0, page.data.data(), page.height, page.width, page.stride, target.data());
    }
};

const bool bitonal_leptonica =
    bench::add({.name = "border of a bitonal page",
                .peer = "Leptonica pixRemoveBorderConnComps",
                .required = 2.0,
                .floor_bytes = 2 * bench::bitonal_page().data.size(),
                .prepare = [] {
                    const auto ours = std::make_shared<BitonalCase>();
                    return bench::Sides{.ours = [=] { ours->crop(); },
                                        .theirs =
                                            [pix = bench::to_leptonica(ours->page)] {
                                                PIX* rest = pixRemoveBorderConnComps(pix.get(), 8);
                                                pixDestroy(&rest);
                                            }};
                }});

// OpenCV's page has a byte per pixel, unpacked before.
cv::Mat unpacked(const bench::Page& page) {
    cv::Mat pixels(page.height, page.width, CV_8U);
    for (int y = 0; y < page.height; ++y) {
        const std::uint8_t* const row =
            page.data.data() + static_cast<std::ptrdiff_t>(y) * page.stride;
        for (int x = 0; x < page.width; ++x)
            pixels.at<std::uint8_t>(y, x) = (row[x / 8] >> (7 - x % 8) & 1) != 0 ? 255 : 0;
    }
    return pixels;
}

const bool bitonal_opencv =
    bench::add({.name = "border of a bitonal page, once more",
                .peer = "OpenCV floodFill",
                .required = 2.0,
                .floor_bytes = 2 * bench::bitonal_page().data.size(),
                .prepare = [] {
                    const auto ours = std::make_shared<BitonalCase>();
                    cv::setNumThreads(1);
                    const auto framed = std::make_shared<cv::Mat>();
                    return bench::Sides{
                        .ours = [=] { ours->crop(); },
                        .theirs =
                            [=, page = unpacked(ours->page)] {
                                cv::copyMakeBorder(page, *framed, 1, 1, 1, 1, cv::BORDER_CONSTANT,
                                                   cv::Scalar(255));
                                cv::floodFill(*framed, {0, 0}, cv::Scalar(0), nullptr, {}, {}, 8);
                            }};
                }});

}  // namespace
