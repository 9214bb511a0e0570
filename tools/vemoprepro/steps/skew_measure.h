// The skew of a page, from the way its lines lie.
//
// Use: measure_skew(reading::look_how_it_lies(page)), before steps change the page's ink: so every
// command comes to the same skew.
#pragma once

#include <optional>
#include <string>

#include "reading/page_lie.h"
#include "steps/skew.h"
#include "steps/skew_fan.h"

namespace tool::steps {

struct MeasuredSkew {
    std::optional<Skew> skew;  // none when none is clear
    double confidence = 0;     // the score of the fan's peak; 0 without ink
    std::string doubt;         // why none is clear
    SkewFan fan;
};

MeasuredSkew measure_skew(const reading::PageLie& lie);

}  // namespace tool::steps
