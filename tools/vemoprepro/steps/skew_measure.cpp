// Lines of text are what a page is straightened by. Where there are none, or what stands upright is
// far clearer (bars, the columns of a table, lines of text on a page that lies sideways), it is by
// that.
#include "steps/skew_measure.h"

#include <cmath>
#include <cstddef>

namespace tool::steps {
namespace {

using reading::JudgedFan;
using reading::SlopeFan;

// In Skew::kScale, finer than slopes are tried: a parabola runs between them.
constexpr int kFineness = 8;
static_assert(SlopeFan::kRun == Skew::kScale);

Skew skew_of_slope(double slope) {
    return {static_cast<int>(std::lround(slope * kFineness)), Skew::kScale * kFineness};
}

FanCurves curves_of(const JudgedFan& judged) {
    FanCurves curves;
    for (int slope = -Skew::kLargest; slope <= Skew::kLargest; ++slope) {
        const auto index = static_cast<std::size_t>(slope + SlopeFan::kSteepest);
        curves.coarse.push_back({skew_of_slope(slope).degrees(), judged.heights[index]});
    }
    for (int i = -kFineness; i <= kFineness; ++i) {
        const double past = 1.0 * i / kFineness;
        curves.fine.push_back(
            {skew_of_slope(judged.highest + past).degrees(), judged.height_near_peak(past)});
    }
    return curves;
}

// Stems are only followed where they stand out by far: letters slant.
constexpr double kClearStems = 2.5;
constexpr double kFarClearer = 2;

bool stems_decide(const JudgedFan& lines, const JudgedFan& stems) {
    const bool lines_stand_out = lines.clear() || lines.height >= kClearStems;
    return stems.clear() && stems.height >= kClearStems &&
           (!lines_stand_out || stems.height > kFarClearer * lines.height);
}

}  // namespace

MeasuredSkew measure_skew(const reading::PageLie& lie) {
    const JudgedFan& decisive = stems_decide(lie.lines, lie.stems) ? lie.stems : lie.lines;

    MeasuredSkew measured;
    measured.confidence = decisive.height;
    measured.fan = {curves_of(lie.lines), curves_of(lie.stems)};
    if (decisive.height == 0) {
        measured.doubt = lie.has_ink ? "no clear skew" : "no ink on the page";
    } else if (!decisive.clear()) {
        measured.doubt = "no clear skew";
    } else if (std::abs(decisive.slope) > Skew::kLargest) {
        measured.doubt = "the skew is beyond 10.6 degrees";
    } else {
        measured.skew = skew_of_slope(decisive.slope);
    }
    return measured;
}

}  // namespace tool::steps
