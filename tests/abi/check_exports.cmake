# What leaves the library is the checked-in list, no more and no less, and its calls to the allocation
# operators go through the dynamic symbol table.
#   cmake -DLIBRARY=… -DLIST=… -P check_exports.cmake
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND nm -D --defined-only --format=posix ${LIBRARY}
                OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${table}")
set(exported "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE " .*" "" name "${line}")
    list(APPEND exported ${name})
endforeach()
file(STRINGS ${LIST} documented)
list(SORT exported)
list(SORT documented)

foreach(name IN LISTS exported)
    if(NOT name IN_LIST documented)
        message(SEND_ERROR "exported but not documented: ${name}")
    endif()
endforeach()
foreach(name IN LISTS documented)
    if(NOT name IN_LIST exported)
        message(SEND_ERROR "documented but not exported: ${name}")
    endif()
endforeach()

execute_process(COMMAND readelf --relocs --wide ${LIBRARY}
                OUTPUT_VARIABLE relocations COMMAND_ERROR_IS_FATAL ANY)
foreach(operator _Znwm _ZdlPv)
    if(NOT relocations MATCHES "(JUMP_SLOT|JUMP_SLO|GLOB_DAT)[^\n]* ${operator}")
        message(SEND_ERROR "calls to ${operator} do not go through the dynamic symbol table")
    endif()
endforeach()

execute_process(COMMAND readelf --dynamic --wide ${LIBRARY}
                OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "SONAME[^\n]*\\[libvemoprepro16\\.so\\.16\\]")
    message(SEND_ERROR "the library's name is not libvemoprepro16.so.16")
endif()
