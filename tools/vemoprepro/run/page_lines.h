// What the program says about a page, in words.
#pragma once

#include <string>
#include <vector>

#include "report/page_record.h"

namespace tool::run {

// All that matters on one line: "colour, 2480 x 3508 pixels, 300 dpi; threshold 143 (Otsu's
// method); skew 1.34 degrees (confidence 3.97)"
std::string page_line(const report::PageRecord& record);

// For -v: the page as it was read ...
std::string source_line(const report::PageRecord& record);
// ... and what became of each step: "deskew: skipped: no clear skew (confidence 1.23)"
std::vector<std::string> step_lines(const report::PageRecord& record);

}  // namespace tool::run
