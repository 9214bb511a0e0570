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

// A share of the ink that is marked as much.
constexpr double kMuchInk = 0.1;

// What is to be warned about, a sentence for each step that warns; empty: nothing.
std::vector<std::string> warnings_of(const PageRecord& record);

}  // namespace tool::report
