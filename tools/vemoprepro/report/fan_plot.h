// The skew fan as an inline SVG: the score of every slope that was tried, for text lines and for
// stems, and the skew that was found.
#pragma once

#include <string>

#include "report/page_record.h"

namespace tool::report {

std::string fan_markup(const steps::SkewFan& fan, const PageRecord& record);

}  // namespace tool::report
