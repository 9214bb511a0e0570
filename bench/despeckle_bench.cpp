// Despeckling and the text filter on a page of text beside Leptonica and OpenCV. Every side begins
// with the page and makes a cleaned one: the library in a copy.
#include <memory>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "harness.h"
#include "leptonica_page.h"
#include "vemoprepro/cleaning.h"

namespace {

constexpr int kSpeckSide = 3;        // specks are this large or smaller
constexpr int kMaxArea = 9;          // as pixels
constexpr int kDistance = 4;         // that keeps dots with their letters
constexpr int kDensity = 4;          // of the changes in busy regions
constexpr int kMaxTextHeight = 100;  // at 300 dots per inch
constexpr int kMinTextDensity = 2;

// The page with a speck of one to nine pixels in every 400 or so.
const bench::Page& speckled_page() {
    static const bench::Page page = [] {
        bench::Page made = bench::bitonal_page();
        std::uint32_t state = 1;
        const auto next = [&state](std::uint32_t limit) {
            state = state * 1664525U + 1013904223U;
            return static_cast<int>((state >> 8) % limit);
        };
        for (int i = 0; i < made.height * made.width / 400; ++i) {
            const int width = 1 + next(kSpeckSide);
            const int height = 1 + next(kSpeckSide);
            const int x0 = next(static_cast<std::uint32_t>(made.width - width));
            const int y0 = next(static_cast<std::uint32_t>(made.height - height));
            for (int y = y0; y < y0 + height; ++y)
                for (int x = x0; x < x0 + width; ++x)
                    made.data[static_cast<std::size_t>(y * made.stride + x / 8)] |=
                        static_cast<std::uint8_t>(0x80 >> (x % 8));
        }
        return made;
    }();
    return page;
}

PIX* select_large(PIX* page) {
    return pixSelectBySize(page, kSpeckSide, kSpeckSide, 8, L_SELECT_IF_EITHER, L_SELECT_IF_GT,
                           nullptr);
}

PIX* keep_near_ink(PIX* page) {
    PIX* large = select_large(page);
    PIX* wide = pixDilateBrick(nullptr, large, 2 * kDistance + 1, 2 * kDistance + 1);
    pixOr(wide, wide, page);
    PIX* kept = select_large(wide);
    pixAnd(kept, kept, page);
    pixDestroy(&large);
    pixDestroy(&wide);
    return kept;
}

PIX* select_text(PIX* page) {
    PIX* closed = pixCloseBrick(nullptr, page, 2, 1);
    PIX* kept = pixSelectBySize(closed, kMaxTextHeight, kMaxTextHeight, 8, L_SELECT_HEIGHT,
                                L_SELECT_IF_LTE, nullptr);
    pixAnd(kept, kept, page);
    pixDestroy(&closed);
    return kept;
}

using Clean = int (*)(unsigned char*, int, int, int);

bool add_beside_leptonica(const char* name, const char* peer, double required,
                          const bench::Page& (*page_of)(), Clean clean, PIX* (*theirs)(PIX*)) {
    return bench::add(
        {.name = name,
         .peer = peer,
         .required = required,
         .floor_bytes = 2 * bench::bitonal_page().data.size(),
         .prepare = [=] {
             const bench::Page& page = page_of();
             const auto copy = std::make_shared<std::vector<std::uint8_t>>(page.data.size());
             return bench::Sides{.ours =
                                     [=, &page] {
                                         *copy = page.data;
                                         clean(copy->data(), page.height, page.width, page.stride);
                                     },
                                 .theirs =
                                     [=, pix = bench::to_leptonica(page)] {
                                         PIX* result = theirs(pix.get());
                                         pixDestroy(&result);
                                     }};
         }});
}

int by_area(unsigned char* image, int height, int width, int stride) {
    return despeckl_mem(image, height, width, stride, kMaxArea);
}

int by_large_area(unsigned char* image, int height, int width, int stride) {
    return despeckl_mem(image, height, width, stride, 100);
}

const bool clean_page =
    add_beside_leptonica("despeckle a clean text page", "Leptonica pixSelectBySize", 6.0,
                         bench::bitonal_page, by_area, select_large);
const bool dirty_page =
    add_beside_leptonica("despeckle a speckled text page", "Leptonica pixSelectBySize", 8.0,
                         speckled_page, by_area, select_large);
const bool large_specks = add_beside_leptonica(
    "despeckle a speckled text page, up to 100 pixels", "Leptonica pixSelectBySize", 6.0,
    speckled_page, by_large_area, [](PIX* page) {
        return pixSelectBySize(page, 10, 10, 8, L_SELECT_IF_EITHER, L_SELECT_IF_GT, nullptr);
    });
const bool judged = add_beside_leptonica(
    "despeckle a speckled text page, by a rule", "Leptonica pixSelectBySize", 0, speckled_page,
    [](unsigned char* image, int height, int width, int stride) {
        return despeckl_cb_mem(
            image, height, width, stride,
            [](void*, int, int, int area) { return area <= kMaxArea ? 1 : 0; }, nullptr);
    },
    select_large);
const bool near_ink = add_beside_leptonica(
    "despeckle a speckled text page, but not near ink", "Leptonica select, dilate, or, select, and",
    10.0, speckled_page,
    [](unsigned char* image, int height, int width, int stride) {
        return despeckl_c_mem(image, height, width, stride, kMaxArea, kDistance);
    },
    keep_near_ink);
const bool text = add_beside_leptonica(
    "keep the text of a page", "Leptonica close, pixSelectBySize, and", 6.0, bench::bitonal_page,
    [](unsigned char* image, int height, int width, int stride) {
        return pre_tva(image, height, width, stride, kMaxTextHeight, kMinTextDensity);
    },
    select_text);

// The page as bytes of 0 and 255.
cv::Mat unpacked(const bench::Page& page) {
    cv::Mat pixels(page.height, page.width, CV_8UC1);
    for (int y = 0; y < page.height; ++y)
        for (int x = 0; x < page.width; ++x) {
            const int byte = page.data[static_cast<std::size_t>(y * page.stride + x / 8)];
            pixels.at<std::uint8_t>(y, x) = (byte >> (7 - x % 8) & 1) != 0 ? 255 : 0;
        }
    return pixels;
}

// Change maps, their sums over the window, and the cleaned page taken where both are high. That
// the cleaned page costs nothing here is in the peer's favour.
void merge_busy_regions(const cv::Mat& page, const cv::Mat& cleaned, cv::Mat& result) {
    cv::Mat across(page.size(), CV_8UC1, cv::Scalar(0));
    cv::Mat down(page.size(), CV_8UC1, cv::Scalar(0));
    const cv::Rect left(0, 0, page.cols - 1, page.rows);
    const cv::Rect right(1, 0, page.cols - 1, page.rows);
    const cv::Rect upper(0, 0, page.cols, page.rows - 1);
    const cv::Rect lower(0, 1, page.cols, page.rows - 1);
    cv::bitwise_xor(page(left), page(right), across(left));
    cv::bitwise_xor(page(upper), page(lower), down(upper));
    cv::boxFilter(across, across, -1, cv::Size(65, 65));
    cv::boxFilter(down, down, -1, cv::Size(65, 65));
    cv::Mat busy;
    cv::min(across, down, busy);
    cv::threshold(busy, busy, 255.0 * 2 * kDensity / 300, 255, cv::THRESH_BINARY);
    page.copyTo(result);
    cleaned.copyTo(result, busy);
}

const bool busy_regions = bench::add(
    {.name = "despeckle the busy regions of a page",
     .peer = "OpenCV change maps, box filter, merge",
     .required = 15.0,
     .floor_bytes = 2 * bench::bitonal_page().data.size(),
     .prepare = [] {
         const bench::Page& page = speckled_page();
         const auto copy = std::make_shared<std::vector<std::uint8_t>>(page.data.size());
         const auto result = std::make_shared<cv::Mat>();
         cv::setNumThreads(1);
         return bench::Sides{
             .ours =
                 [=, &page] {
                     *copy = page.data;
                     despeckl_selective(copy->data(), page.height, page.width, page.stride, 0,
                                        kMaxArea, kDensity);
                 },
             .theirs =
                 [=, pixels = unpacked(page), cleaned = unpacked(bench::bitonal_page())] {
                     merge_busy_regions(pixels, cleaned, *result);
                 }};
     }});

}  // namespace
