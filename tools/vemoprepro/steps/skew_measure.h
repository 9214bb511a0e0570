// The skew of a page, from the way its lines lie.
//
// Use: measure_skew(reading::small_ink(page)), with the page of any kind, before steps
// change its ink: so every command comes to the same skew.
#pragma once

#include <optional>
#include <string>

#include "page/page.h"
#include "steps/skew.h"
#include "steps/skew_fan.h"

namespace tool::steps {

struct MeasuredSkew {
    std::optional<Skew> skew;  // none when none is clear
    double confidence = 0;     // the score of the fan's peak; 0 without ink
    std::string doubt;         // why none is clear
    SkewFan fan;
};

// ink: bitonal.
MeasuredSkew measure_skew(const Page& ink);

}  // namespace tool::steps
