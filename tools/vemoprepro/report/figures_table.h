// The table of all figures at the top of the report.
#pragma once

#include <string>
#include <vector>

#include "report/page_record.h"

namespace tool::report {

// A page's figures, or the failure of an input.
struct FigureRow {
    std::string anchor;  // of its part of the report
    std::string input;
    PageRecord record;
    std::string error;  // empty: the record counts
};

std::string figures_markup(const std::vector<FigureRow>& rows);

}  // namespace tool::report
