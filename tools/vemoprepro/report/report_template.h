// What is the same in every report: the first lines, the style, and the end with the script.
#pragma once

namespace tool {

extern const char* const kReportStart;  // up to the title
extern const char* const kReportStyle;  // from behind the title to the end of the head
extern const char* const kReportEnd;    // from behind the figures

}  // namespace tool
