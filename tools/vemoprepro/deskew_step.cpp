/* Straightening of bitonal pages. */
#include <vemoprepro/deskew.h>

#include <cmath>
#include <cstdio>
#include <utility>

#include "steps.h"

namespace tool {
namespace {

/* The estimator needs this many pixels a side. */
constexpr int kShortestSide = 32;
/* Below this confidence the estimator finds no direction that stands out. */
constexpr double kClearConfidence = 1.5;

struct Measured {
    Skew skew;
    double confidence = 0;
};

Measured measure(const Page& page) {
    Measured measured;
    int height = 0, width = 0;
    if (estimate_skew_of_binary_image(0, nullptr, page.bytes.get(), page.height, page.width,
                                      static_cast<int>(page.stride()), &measured.skew.numerator,
                                      &measured.skew.denominator, &measured.confidence, &height,
                                      &width) != 0)
        throw std::bad_alloc();
    return measured;
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
    if (measured.confidence < kClearConfidence) return {false, "no clear skew" + confidence};
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
