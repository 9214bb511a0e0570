cmake_minimum_required(VERSION 3.25)

# Writes OUTPUT with the revision of the source tree, 40 zeros outside of a git checkout; leaves the file
# alone when nothing changed so that nothing is rebuilt for it.
execute_process(COMMAND git -C ${SOURCE} rev-parse --verify HEAD
                OUTPUT_VARIABLE revision OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT revision MATCHES "^[0-9a-f]+$")
    string(REPEAT "0" 40 revision)
endif()
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "#define VEMOPREPRO_SOURCE_REVISION \"@revision@\"\n" @ONLY)
