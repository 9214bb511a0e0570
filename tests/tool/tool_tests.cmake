# The command-line program is tested from outside, on files made for the purpose, by scripts that need
# Python's imaging library, and for the report a browser. tests/tool/<room>/*_test.cpp test pieces of a
# room by themselves.
if(TARGET vemoprepro)
    find_program(VEMOPREPRO_TEST_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
    foreach(subject formats clean single_steps geometry_commands errors hostile_files folders interrupt messages usage report)
        add_test(NAME tool.${subject}
                 COMMAND ${VEMOPREPRO_TEST_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/${subject}_test.py)
        set_tests_properties(tool.${subject} PROPERTIES
            ENVIRONMENT "VEMOPREPRO=$<TARGET_FILE:vemoprepro>;PYTHONDONTWRITEBYTECODE=1"
            TIMEOUT 300)
    endforeach()

    file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*/*_test.cpp)
    add_tests(tool_tests "${tests}" vemoprepro_options vemoprepro_steps vemoprepro16)
    target_include_directories(vemoprepro_tool_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR})

    add_test(NAME tool.rooms COMMAND ${CMAKE_COMMAND} -DROOT=${PROJECT_SOURCE_DIR}/tools/vemoprepro
        "-DFLOORS=vemoprepro | page | files reading | steps | report | run"
        -P ${CMAKE_CURRENT_SOURCE_DIR}/check_includes.cmake)
endif()
