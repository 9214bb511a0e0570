# Makes the template of the report a constant of C++: report.html with the style and the script in their
# places, so that a report needs no other file.
#   cmake -DSOURCE=… -DOUTPUT=… -DVERSION=… -P embed.cmake

cmake_minimum_required(VERSION 3.25)

file(READ ${SOURCE}/report.html text)
file(READ ${SOURCE}/style.css style)
file(READ ${SOURCE}/script.js script)
string(REPLACE "@style@" "${style}" text "${text}")
string(REPLACE "@script@" "${script}" text "${text}")
string(REPLACE "@version@" "${VERSION}" text "${text}")
file(WRITE ${OUTPUT} "#include \"report/report_frame.h\"

namespace tool::report {

const char* const kReportTemplate = R\"template(${text})template\";

}  // namespace tool::report
")
