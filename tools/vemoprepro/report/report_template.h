/* What is the same in every report: the first lines, the style, and the end with the script. */
#ifndef VEMOPREPRO_TOOL_REPORT_TEMPLATE_H_
#define VEMOPREPRO_TOOL_REPORT_TEMPLATE_H_

namespace tool {

extern const char* const kReportStart; /* up to the title */
extern const char* const kReportStyle; /* from behind the title to the end of the head */
extern const char* const kReportEnd;   /* from behind the figures */

}  // namespace tool

#endif  // VEMOPREPRO_TOOL_REPORT_TEMPLATE_H_
