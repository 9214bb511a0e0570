// What the program does to pages before recognition reads them, on a grey page of text, beside the
// peer's nearest operation where there is one. Every side makes a page of its own; the program
// works in place, so it begins with a copy.
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>

#include "harness.h"
#include "page/page.h"
#include "reading/even_light.h"
#include "reading/impulses.h"
#include "reading/ink_contrast.h"
#include "reading/resample.h"
#include "reading/ruled_lines.h"
#include "reading/sharpen.h"

namespace {

using tool::Page;
using tool::PageKind;
namespace reading = tool::reading;

constexpr int kRise = 13;  // over 512: one and a half degrees

Page page_of(const bench::Page& from, PageKind kind) {
    Page page = make_page(kind, from.width, from.height, {300, 300});
    for (int y = 0; y < page.height; ++y) {
        std::memcpy(page.row(y), from.data.data() + std::ptrdiff_t{y} * from.stride, page.stride());
    }
    return page;
}

const Page& grey_text() {
    static const Page page = page_of(bench::grey_page(), PageKind::kGrey);
    return page;
}

cv::Mat mat_of(const Page& grey) {
    return {grey.height, grey.width, CV_8UC1, grey.bytes.get()};
}

using Peer = void (*)(const cv::Mat& page, cv::Mat& result);

// written: pages' worth of bytes.
bool add_row(const char* name, const char* peer, std::size_t written, void (*ours)(const Page&),
             Peer theirs) {
    const std::size_t size = bench::grey_page().data.size();
    return bench::add({.name = name,
                       .peer = peer,
                       .required = 0,
                       .floor_bytes = size + written * size,
                       .prepare = [=] {
                           cv::setNumThreads(1);
                           bench::Sides sides;
                           sides.ours = [=] { ours(grey_text()); };
                           if (theirs != nullptr) {
                               const auto result = std::make_shared<cv::Mat>();
                               sides.theirs = [=] { theirs(mat_of(grey_text()), *result); };
                           }
                           return sides;
                       }});
}

template <void (*kChange)(Page&)>
void on_a_copy(const Page& page) {
    Page changed = copy_of(page);
    kChange(changed);
}

const bool doubled = add_row(
    "double a grey page", "OpenCV resize, cubic", 4,
    [](const Page& page) { reading::doubled(page); },
    [](const cv::Mat& page, cv::Mat& result) {
        cv::resize(page, result, {}, 2, 2, cv::INTER_CUBIC);
    });
const bool levelled = add_row(
    "level a grey page", "OpenCV warpAffine, cubic", 1,
    [](const Page& page) { reading::levelled(page, kRise, 512, page.width, page.height); },
    [](const cv::Mat& page, cv::Mat& result) {
        const cv::Point2f centre(static_cast<float>(page.cols) / 2.0F,
                                 static_cast<float>(page.rows) / 2.0F);
        const cv::Mat turn = cv::getRotationMatrix2D(centre, -1.5, 1);
        cv::warpAffine(page, result, turn, page.size(), cv::INTER_CUBIC, cv::BORDER_CONSTANT, 255);
    });
const bool impulses =
    add_row("take impulses off a grey page", "OpenCV medianBlur of 3 x 3", 1,
            on_a_copy<reading::remove_impulses>,
            [](const cv::Mat& page, cv::Mat& result) { cv::medianBlur(page, result, 3); });
const bool sharpened =
    add_row("sharpen a grey page", "OpenCV blur of 3 x 3, addWeighted", 1,
            on_a_copy<reading::sharpen>, [](const cv::Mat& page, cv::Mat& result) {
                cv::blur(page, result, {3, 3});
                cv::addWeighted(page, 2, result, -1, 0, result);
            });
const bool evened =
    add_row("even the light of a grey page", "", 1, on_a_copy<reading::even_light>, nullptr);
const bool contrast = add_row(
    "the contrast of a grey page's ink", "", 0,
    [](const Page& page) { reading::ink_contrast(reading::contrasts_of(page)); }, nullptr);

// Of a page at 300 dots per inch.
reading::LineScale line_scale() {
    reading::LineScale scale{};
    scale.shortest = 150;
    scale.shortest_alone = 240;
    scale.thickest = 10;
    scale.gap = 5;
    scale.dash = 16;
    scale.around = 16;
    scale.pitch = 26;
    return scale;
}

const bool lines =
    bench::add({.name = "take ruled lines off a bitonal page",
                .peer = "",
                .required = 0,
                .floor_bytes = 2 * bench::bitonal_page().data.size(),
                .prepare = [] {
                    static const Page page = page_of(bench::bitonal_page(), PageKind::kBitonal);
                    return bench::Sides{.ours =
                                            [] {
                                                Page changed = copy_of(page);
                                                reading::remove_ruled_lines(
                                                    changed, line_scale(), {true, true},
                                                    reading::Sureness::kSure);
                                            },
                                        .theirs = {}};
                }});

}  // namespace
