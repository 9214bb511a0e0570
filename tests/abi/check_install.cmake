# Installs the library aside and builds, as a user of it would, a C program against the installed tree: with
# find_package and with pkg-config. Both are run on a small page. The program is the one that the README
# prints.
#   cmake -DBUILD=… -DCONSUMER=… -DREADME=… -DWORK=… -DCC=… -DFLAGS=… -P check_install.cmake
cmake_minimum_required(VERSION 3.25)

file(READ ${README} readme)
file(READ ${CONSUMER}/straighten.c program)
string(FIND "${readme}" "```c\n${program}```" position)
if(position EQUAL -1)
    message(SEND_ERROR "the README does not print examples/straighten/straighten.c as it is")
endif()

set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})

# 64 x 64 pixels: a byte of text is a byte of pixels.
string(REPEAT "~~~~~~~~ooooooooUUUUUUUU        " 16 pixels)
file(WRITE ${WORK}/page.pbm "P4\n64 64\n${pixels}")
function(straighten program)
    execute_process(COMMAND ${program} INPUT_FILE ${WORK}/page.pbm OUTPUT_FILE ${WORK}/straight.pbm
                    ERROR_VARIABLE message COMMAND_ERROR_IS_FATAL ANY)
    if(NOT message MATCHES "^skew: 0 pixels over 512")
        message(SEND_ERROR "${program}: ${message}")
    endif()
endfunction()

execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix}
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

execute_process(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK}/package -DCMAKE_PREFIX_PATH=${prefix}
                        -DCMAKE_C_COMPILER=${CC} -DCMAKE_C_FLAGS=${FLAGS}
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/package OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
straighten(${WORK}/package/straighten)

file(GLOB_RECURSE package_file ${prefix}/*/vemoprepro16.pc)
get_filename_component(package_folder ${package_file} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${package_folder})
execute_process(COMMAND pkg-config --define-variable=prefix=${prefix} --cflags --libs vemoprepro16
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${FLAGS} ${flags}")
get_filename_component(library_folder ${package_folder} DIRECTORY)
execute_process(COMMAND ${CC} -std=c11 -Wall -Werror ${CONSUMER}/straighten.c -o ${WORK}/by_pkg_config
                        ${flags} -Wl,-rpath,${library_folder}
                COMMAND_ERROR_IS_FATAL ANY)
straighten(${WORK}/by_pkg_config)
