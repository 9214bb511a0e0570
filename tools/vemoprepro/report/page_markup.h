// The part of the report that shows one page: pictures one above the other, the steps with what
// they removed, the skew fan.
#pragma once

#include <cstddef>
#include <string>

#include "report/page_pictures.h"
#include "report/page_record.h"

namespace tool::report {

// anchor: the id that the figures link to.
std::string page_markup(const std::string& anchor, const std::string& input, std::size_t page_count,
                        const PageRecord& record, const PagePictures& pictures);
// The same for an input that failed.
std::string failure_markup(const std::string& anchor, const std::string& input,
                           const std::string& what);

}  // namespace tool::report
