// The pieces of the report's HTML. All text that comes from outside is escaped here.
#pragma once

#include <string>
#include <vector>

#include "report/page_pictures.h"
#include "report/page_record.h"

namespace tool {

// A page's figures, or the failure of an input.
struct FigureRow {
    std::string anchor;  // of its part of the report
    std::string input;
    PageRecord record;
    std::string error;  // empty: the record counts
};

std::string head_markup(const std::string& title);
std::string page_markup(const std::string& anchor, const std::string& input, std::size_t page_count,
                        const PageRecord& record, const PagePictures& pictures);
std::string failure_markup(const std::string& anchor, const std::string& input,
                           const std::string& what);
std::string figures_markup(const std::vector<FigureRow>& rows);
// The scores over the angles, as a picture of lines.
std::string fan_markup(const SkewFan& fan, const PageRecord& record);

// Safe in text and in quoted attributes; bytes that are not UTF-8 become U+FFFD.
std::string escaped(const std::string& text);

}  // namespace tool
