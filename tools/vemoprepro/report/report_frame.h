// What is the same in every report: all that stands around the pages. The figures are written last,
// when they are known; the script brings them to the top.
//
// Its source is report/template/: report.html, which style.css and script.js are put into when the
// program is built.
#pragma once

#include <string>

namespace tool::report {

// With @title@ and @pages@ for what is put in.
extern const char* const kReportTemplate;

// Up to the first page.
std::string report_start(const std::string& title);
// From behind the figures on.
std::string report_end();

}  // namespace tool::report
