// What is the same in every report: all that stands around the pages and their figures.
//
// Its source is report/template/: index.html and page.html, which the styles and scripts are put
// into when the program is built, so that each file of a report has all that it needs inside but
// for the pictures at full size.
#pragma once

#include <string>

namespace tool::report {

// With names between @ signs for what is put in.
extern const char* const kIndexTemplate;
extern const char* const kPageTemplate;

// Stands near the start of every index: by it a folder of a report is told from others.
constexpr const char* kReportMark = "content=\"vemoprepro report\"";

// Texts are escaped here; markup is not.
std::string index_file(const std::string& title, const std::string& summary,
                       const std::string& figures_markup);
// previous, next: files of the neighbouring pages, or empty.
std::string page_file(const std::string& title, const std::string& page_markup,
                      const std::string& previous, const std::string& next);

}  // namespace tool::report
