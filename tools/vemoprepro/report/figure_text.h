// Figures as people read them: rounded to what matters, with their units.
#pragma once

#include <string>

#include "report/page_record.h"

namespace tool::report {

// "0 %", "< 0.01 %", "0.04 %", "1.3 %", "12 %"
std::string share_text(double share);
// "1.34°"
std::string degrees_text(double degrees);
// "< 0.01", "0.21", "12.4"
std::string seconds_text(double seconds);
// "2480 × 3508"
std::string size_text(int width, int height);
// "300", "300 × 150"
std::string dpi_text(Resolution dpi);

}  // namespace tool::report
