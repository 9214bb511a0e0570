// The file of the report that shows one page: its figures and warnings, the pictures, the steps
// with what they removed, the skew fan.
#pragma once

#include <cstddef>
#include <string>

#include "report/page_pictures.h"
#include "report/page_record.h"
#include "report/stage_markup.h"

namespace tool::report {

// "scan.tif, page 3 of 12"
std::string page_title(const std::string& input, std::size_t number, std::size_t page_count);

// What stands below the heading.
std::string page_markup(const std::string& title, const PictureNames& names,
                        const PageRecord& record, const PagePictures& pictures);

}  // namespace tool::report
