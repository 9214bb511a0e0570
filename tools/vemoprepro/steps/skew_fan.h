// How well the ink lines up along each slope that a skew search tried.
//
// Use: read_fan() on the trace that the library's estimator writes. A trace without a search that
// it knows gives empty curves.
#pragma once

#include <istream>
#include <vector>

namespace tool::steps {

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

    bool empty() const { return lines.coarse.empty() && stems.coarse.empty(); }
};

// The name of the trace in the folder that the estimator is given.
constexpr const char* kSkewTraceName = "estimate_skew_of_binary_image.log";

SkewFan read_fan(std::istream& trace);

}  // namespace tool::steps
