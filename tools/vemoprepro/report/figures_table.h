// The table of all figures, with the pages that need a look first.
#pragma once

#include <string>
#include <vector>

#include "report/page_record.h"

namespace tool::report {

// A page's figures, or the failure of an input.
struct FigureRow {
    std::string input;
    PageRecord record;
    std::string page_file;  // what shows the page; of a failure empty
    std::string thumbnail;  // a picture file
    std::string error;      // empty: the record counts
};

// "12 pages, 1 failed, 2 to look at"
std::string summary_text(const std::vector<FigureRow>& rows);

std::string figures_markup(const std::vector<FigureRow>& rows);

}  // namespace tool::report
