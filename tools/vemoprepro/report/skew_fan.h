// How well the ink lines up along each slope that a skew search tried.
//
// Use: trace_fans() searches the whole page and its inner part again, with a trace, and gives a fan
// for each; the confidence tells which one of them a page was straightened by.
#pragma once

#include <istream>
#include <vector>

#include "page/page.h"

namespace tool {

struct FanPoint {
    double degrees;
    double score;  // the alignment, in multiples of the worst one
};

// The searches of one direction, each ordered by its degrees. The fine one goes around the best
// candidate of the coarse one, at twice the resolution and with a worst of its own.
struct FanCurves {
    std::vector<FanPoint> coarse;
    std::vector<FanPoint> fine;
};

struct SkewFan {
    FanCurves lines;  // slopes of text lines
    FanCurves stems;  // slopes of stems, against the vertical
    double confidence = 0;
};

// Empty for a page that has no skew to look for, or when the trace cannot be written.
std::vector<SkewFan> trace_fans(const Page& page);

SkewFan read_fan(std::istream& trace);

}  // namespace tool
