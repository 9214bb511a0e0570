# Makes the templates of the report constants of C++: index.html and page.html with their styles and scripts
# in their places, so that a file of a report needs no other one to be read.
#   cmake -DSOURCE=… -DOUTPUT=… -DVERSION=… -P embed.cmake

cmake_minimum_required(VERSION 3.25)

set(constants "")
foreach(template Index Page)
    string(TOLOWER ${template} name)
    file(READ ${SOURCE}/${name}.html text)
    foreach(part common.css ${name}.css ${name}.js)
        file(READ ${SOURCE}/${part} content)
        string(REPLACE "@${part}@" "${content}" text "${text}")
    endforeach()
    string(REPLACE "@version@" "${VERSION}" text "${text}")
    string(APPEND constants "const char* const k${template}Template = R\"template(${text})template\";\n")
endforeach()

file(WRITE ${OUTPUT} "#include \"report/report_frame.h\"

namespace tool::report {

${constants}
}  // namespace tool::report
")
