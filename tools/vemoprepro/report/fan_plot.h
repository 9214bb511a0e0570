// The skew fan as an inline SVG: the score of every slope that was tried, for text lines and for
// stems, and the angle that was taken; or the peak, and why it was not.
#pragma once

#include <string>

#include "report/page_record.h"

namespace tool::report {

std::string fan_markup(const steps::SkewFan& fan, const PageRecord& record);

}  // namespace tool::report
