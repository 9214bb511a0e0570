// Whether the fan of a page has a peak that tells how its lines lie.
#pragma once

#include "reading/slope_fan.h"

namespace tool::reading {

// The alignments of all bands as they are judged, in multiples of the usual one, their median; all
// 0 without ink. Lines that are bent or not parallel have many peaks side by side, which are made
// one here.
struct JudgedFan {
    SlopeFan::Alignments heights{};

    int highest = 0;     // the slope that was tried next to the peak
    double slope = 0;    // of the peak, in pixels over SlopeFan::kRun
    double height = 0;   // of the peak
    double rivals = 0;   // how many times the peak stands out more than what else stands out
    double width = 0;    // of the peak at half of its height, in the unit of the slope
    double support = 0;  // the share of the bands, weighed by their ink, that have the peak as well

    // The height at a slope, counted from the one next to the peak: between them runs the parabola
    // through the heights around the peak, whose vertex it is.
    double height_near_peak(double from_highest) const;
    bool clear() const;
};

JudgedFan judge(const SlopeFan& fan);

}  // namespace tool::reading
