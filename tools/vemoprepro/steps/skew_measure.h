// The skew of a part of a bitonal page.
//
// Use: measure_skew(page, box_of(page), with_fan).
//
// Keep true: a part has at least kShortestSkewSide pixels a side and starts at a whole byte.
#pragma once

#include <optional>

#include "page/page.h"
#include "steps/skew.h"
#include "steps/skew_fan.h"

namespace tool::steps {

// The estimator needs this many pixels a side.
constexpr int kShortestSkewSide = 32;

struct MeasuredSkew {
    Skew skew;
    double confidence = 0;  // not a number without ink
    std::optional<SkewFan> fan;

    // Below this confidence the estimator finds no direction that stands out.
    static constexpr double kClearConfidence = 1.5;
    bool clear() const { return confidence >= kClearConfidence; }
};

// The page without a twelfth of each side, where scanner borders, lamp streaks and punch holes lie;
// none when too little is left.
std::optional<Box> part_within_margins(const Page& page);

// with_fan: the fan of the search is kept as well, unless there is no place to write its trace to.
MeasuredSkew measure_skew(const Page& page, const Box& part, bool with_fan);

}  // namespace tool::steps
