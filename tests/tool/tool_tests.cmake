# The command-line program is tested from outside, on files made for the purpose, by scripts that need
# Python's imaging library, and for the report a browser.
if(TARGET vemoprepro)
    find_program(VEMOPREPRO_TEST_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
    foreach(subject formats clean single_steps errors report)
        add_test(NAME tool.${subject}
                 COMMAND ${VEMOPREPRO_TEST_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/${subject}_test.py)
        set_tests_properties(tool.${subject} PROPERTIES
            ENVIRONMENT "VEMOPREPRO=$<TARGET_FILE:vemoprepro>;PYTHONDONTWRITEBYTECODE=1"
            TIMEOUT 300)
    endforeach()
endif()
