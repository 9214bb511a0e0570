// Straightening. A bitonal page is turned by the library's shears, a grey one is resampled.
#include <vemoprepro/deskew.h>

#include <cmath>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "reading/resample.h"
#include "steps/ink_removal.h"
#include "steps/number_text.h"
#include "steps/skew_measure.h"
#include "steps/step.h"

namespace tool::steps {
namespace {

// Turning a page by less blurs or breaks more than it straightens.
constexpr double kStraightDegrees = 0.06;

constexpr int kShortestSide = 32;  // of a page with room for lines

// The straight page without its pixels.
Page straight_frame(const Page& page, Skew skew) {
    Page straight;
    straight.dpi = page.dpi;
    straight.scale = page.scale;
    if (skrotbmp_dim(skew.numerator, skew.denominator, page.height, page.width, &straight.height,
                     &straight.width) != 0) {
        throw PageError("the skew is out of range");
    }
    return straight;
}

void straighten(Page& page, Skew skew, Page straight) {
    if (page.kind == PageKind::kGrey) {
        page = reading::levelled(page, skew.numerator, skew.denominator, straight.width,
                                 straight.height);
        return;
    }
    straight.bytes = allocate_pixels(straight.size());
    if (skrotbmp_mem(skew.numerator, skew.denominator, page.bytes.get(), page.height, page.width,
                     static_cast<int>(page.stride()), straight.bytes.get(), straight.height,
                     straight.width, static_cast<int>(straight.stride()), nullptr) != 0) {
        throw std::bad_alloc();
    }
    page = std::move(straight);
}

Outcome straighten_by(Page& page, Skew skew, const std::string& source) {
    if (std::abs(skew.degrees()) < kStraightDegrees) return {false, "already straight" + source};
    Page straight = straight_frame(page, skew);
    if (straight.width > kLongestSide || straight.height > kLongestSide) {
        return {false, "straight it would be larger than 32767 pixels a side" + source};
    }
    straighten(page, skew, std::move(straight));
    return {true, with_digits("skew %.2f degrees", skew.degrees()) + source};
}

Outcome measure_and_straighten(PageWork& work) {
    if (work.page.height < kShortestSide || work.page.width < kShortestSide) {
        return {false, "smaller than 32 pixels a side"};
    }
    if (!work.lie) work.lie = reading::look_how_it_lies(work.page);
    const MeasuredSkew measured = measure_skew(*work.lie);
    work.skew = measured.skew;
    work.confidence = measured.confidence;
    work.fan = measured.fan;
    const std::string confidence = with_digits(" (confidence %.2f)", measured.confidence);
    if (!measured.skew) {
        return {false, measured.doubt + (measured.confidence > 0 ? confidence : "")};
    }
    return straighten_by(work.page, *measured.skew, confidence);
}

}  // namespace

Step deskew_step(const StepOptions& options) {
    const bool wanted = options.straighten;
    const bool greys = options.for_reading;
    const std::optional<Skew> given = options.skew;
    return {"deskew", Effect::kTurnsPage, [=](PageWork& work) -> Outcome {
                if (!wanted) return {false, kSwitchedOff};
                if (!greys) require_bitonal(work.page, "deskew");
                if (!given && !work.given.skew) return measure_and_straighten(work);
                work.skew = given ? given : work.given.skew;
                return straighten_by(work.page, *work.skew,
                                     given ? " (as given)" : " (as recorded)");
            }};
}

}  // namespace tool::steps
