# The command-line program is tested from outside, on files made for the purpose, by scripts that need
# Python's imaging library, and for the report a browser. tests/tool/<room>/*_test.cpp test pieces of a
# room by themselves.
if(TARGET vemoprepro)
    find_program(VEMOPREPRO_TEST_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
    foreach(subject formats clean single_steps errors report)
        add_test(NAME tool.${subject}
                 COMMAND ${VEMOPREPRO_TEST_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/${subject}_test.py)
        set_tests_properties(tool.${subject} PROPERTIES
            ENVIRONMENT "VEMOPREPRO=$<TARGET_FILE:vemoprepro>;PYTHONDONTWRITEBYTECODE=1"
            TIMEOUT 300)
    endforeach()

    file(GLOB room_tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*/*_test.cpp)
    add_executable(vemoprepro_tool_tests ${room_tests} support/sanitizer_options.cpp)
    target_link_libraries(vemoprepro_tool_tests PRIVATE vemoprepro_options vemoprepro_steps
        vemoprepro16 GTest::gtest GTest::gtest_main)
    target_include_directories(vemoprepro_tool_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR})
    gtest_discover_tests(vemoprepro_tool_tests DISCOVERY_TIMEOUT 60)

    add_test(NAME tool.rooms COMMAND ${CMAKE_COMMAND}
        -DROOMS=${PROJECT_SOURCE_DIR}/tools/vemoprepro -P ${CMAKE_CURRENT_LIST_DIR}/check_rooms.cmake)
endif()
