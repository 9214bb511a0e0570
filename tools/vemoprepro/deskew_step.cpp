/* Straightening of bitonal pages. */
#include <vemoprepro/deskew.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "steps.h"

namespace tool {
namespace {

/* The estimator needs this many pixels a side. */
constexpr int kShortestSide = 32;
/* Below this confidence the estimator finds no direction that stands out. */
constexpr double kClearConfidence = 1.5;

/* Scanner borders, lamp streaks and punch holes lie in this part of each side of a page. */
constexpr int kMarginFraction = 12;
/* Two measurements of one page agree up to this many pixels of drift over 512, a third of a degree.
 */
constexpr int kAgreement = 3;

struct Measured {
    Skew skew;
    double confidence = 0;

    bool clear() const { return confidence >= kClearConfidence; }
};

/* Columns x0 .. x0 + width - 1 of the rows y0 .. y0 + height - 1; x0 is a multiple of 8. */
struct Window {
    int x0, y0, width, height;
};

Measured measure(const Page& page, const Window& window) {
    Measured measured;
    int height = 0, width = 0;
    const unsigned char* corner =
        page.bytes.get() + static_cast<std::size_t>(window.y0) * page.stride() + window.x0 / 8;
    if (estimate_skew_of_binary_image(0, nullptr, corner, window.height, window.width,
                                      static_cast<int>(page.stride()), &measured.skew.numerator,
                                      &measured.skew.denominator, &measured.confidence, &height,
                                      &width) != 0)
        throw std::bad_alloc();
    return measured;
}

/* The whole page, which measures most exactly, unless its inner part clearly says something else:
 * then a border or a streak has been measured, and not the text. */
Measured measure(const Page& page) {
    const Measured whole = measure(page, Window{0, 0, page.width, page.height});
    const int margin_x = page.width / kMarginFraction / 8 * 8;
    const int margin_y = page.height / kMarginFraction;
    const Window inner{margin_x, margin_y, page.width - 2 * margin_x, page.height - 2 * margin_y};
    if (inner.width < kShortestSide || inner.height < kShortestSide) return whole;
    const Measured within = measure(page, inner);
    const bool agree = std::abs(within.skew.numerator - whole.skew.numerator) <= kAgreement;
    return within.clear() && !(whole.clear() && agree) ? within : whole;
}

void straighten(Page& page, Skew skew) {
    Page straight;
    straight.dpi = page.dpi;
    if (skrotbmp_dim(skew.numerator, skew.denominator, page.height, page.width, &straight.height,
                     &straight.width) != 0)
        throw StepError("the skew is out of range");
    straight.bytes = allocate_pixels(straight.size());
    if (skrotbmp_mem(skew.numerator, skew.denominator, page.bytes.get(), page.height, page.width,
                     static_cast<int>(page.stride()), straight.bytes.get(), straight.height,
                     straight.width, static_cast<int>(straight.stride()), nullptr) != 0)
        throw std::bad_alloc();
    page = std::move(straight);
}

std::string with_digits(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

Outcome straighten_by(Page& page, Skew skew, const std::string& source) {
    if (skew.numerator == 0) return {false, "already straight" + source};
    straighten(page, skew);
    return {true, with_digits("skew %.2f degrees", skew.degrees()) + source};
}

Outcome measure_and_straighten(Page& page, PageRecord& record) {
    if (page.height < kShortestSide || page.width < kShortestSide)
        return {false, "smaller than 32 pixels a side"};
    const Measured measured = measure(page);
    record.skew = measured.skew;
    record.confidence = measured.confidence;
    if (std::isnan(measured.confidence)) return {false, "no ink on the page"};
    const std::string confidence = with_digits(" (confidence %.2f)", measured.confidence);
    if (!measured.clear()) return {false, "no clear skew" + confidence};
    return straighten_by(page, measured.skew, confidence);
}

}  // namespace

Step deskew_step(const Options& options) {
    const bool wanted = options.straighten;
    const std::optional<Skew> given = options.skew;
    return {
        "deskew",
        [wanted, given](Page& page, const PageFindings& findings, PageRecord& record) -> Outcome {
            if (!wanted) return {false, "switched off"};
            if (page.kind != PageKind::bitonal)
                throw StepError(std::string("deskew takes bitonal pages, this one is ") +
                                name_of(page.kind) + " (clean binarizes first)");
            if (!given && !findings.skew) return measure_and_straighten(page, record);
            record.skew = given ? *given : *findings.skew;
            return straighten_by(page, *record.skew, given ? " (as given)" : " (as recorded)");
        }};
}

}  // namespace tool
