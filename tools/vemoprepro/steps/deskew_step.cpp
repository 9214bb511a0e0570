// Straightening, of pages of every kind.
#include <cmath>
#include <string>

#include "steps/kept_page.h"
#include "steps/number_text.h"
#include "steps/skew_measure.h"
#include "steps/step.h"
#include "steps/straighten.h"

namespace tool::steps {
namespace {

// Turning a page by less blurs or breaks more than it straightens.
constexpr double kStraightDegrees = 0.06;

constexpr int kShortestSide = 32;  // of a page with room for lines

// With --for ocr greys are resampled: one interpolation keeps the letters' edges best. Ink beside a
// page that is kept in its own kind goes where that page's pixels go.
Straightening way_of(const PageWork& work, bool for_reading) {
    if (work.page.kind != PageKind::kBitonal && for_reading) return Straightening::kResampled;
    const bool alone = work.page.kind == PageKind::kBitonal && !work.kept;
    return alone ? Straightening::kPieces : Straightening::kPixels;
}

// Unless asked otherwise, greys and colours go on as they are at the page's border.
Background background_for(const Page& page, const StepOptions& options) {
    return options.background.value_or(Background{page.kind != PageKind::kBitonal, kWhite});
}

Outcome straighten_by(PageWork& work, Skew skew, const std::string& source,
                      const StepOptions& options) {
    Page& page = work.page;
    if (std::abs(skew.degrees()) < kStraightDegrees) return {false, "already straight" + source};
    const Straightening way = way_of(work, options.for_reading);
    const StraightSize size = straight_size(page, skew, way);
    if (size.width > kLongestSide || size.height > kLongestSide) {
        return {false, "straight it would be larger than 32767 pixels a side" + source};
    }
    straighten(page, skew, way, background_for(page, options));
    straighten_kept(work, skew, way);
    return {true, with_digits("skew %.2f degrees", skew.degrees()) + source};
}

Outcome measure_and_straighten(PageWork& work, const StepOptions& options) {
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
    return straighten_by(work, *measured.skew, confidence, options);
}

}  // namespace

Step deskew_step(const StepOptions& options) {
    return {"deskew", Effect::kTurnsPage, [=](PageWork& work) -> Outcome {
                if (!options.straighten) return {false, kSwitchedOff};
                if (!options.skew && !work.given.skew) return measure_and_straighten(work, options);
                work.skew = options.skew ? options.skew : work.given.skew;
                return straighten_by(work, *work.skew,
                                     options.skew ? " (as given)" : " (as recorded)", options);
            }};
}

}  // namespace tool::steps
