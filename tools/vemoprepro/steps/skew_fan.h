// How well the ink of a page lines up along each slope that was tried, as its skew was decided by.
#pragma once

#include <vector>

namespace tool::steps {

struct FanPoint {
    double degrees;
    double score;  // the alignment, in multiples of the usual one of its direction
};

// The slopes of one direction, each ordered by its degrees. The fine ones lie around the peak,
// which is one of them: between the slopes that were tried a parabola runs.
struct FanCurves {
    std::vector<FanPoint> coarse;
    std::vector<FanPoint> fine;
};

struct SkewFan {
    FanCurves lines;  // slopes of text lines
    FanCurves stems;  // slopes of stems, against the vertical

    bool empty() const { return lines.coarse.empty() && stems.coarse.empty(); }
};

}  // namespace tool::steps
