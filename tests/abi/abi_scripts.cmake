add_test(NAME Library.ExportsWhatIsDocumented
    COMMAND ${CMAKE_COMMAND} -DLIBRARY=$<TARGET_FILE:vemoprepro16>
            -DLIST=${PROJECT_SOURCE_DIR}/src/api/exported_symbols.txt
            -P ${CMAKE_CURRENT_SOURCE_DIR}/abi/check_exports.cmake)

set(consumer_flags "")
if(VEMOPREPRO_SANITIZE)
    set(consumer_flags "-fsanitize=${VEMOPREPRO_SANITIZE}")
endif()
add_test(NAME Library.BuildsAgainstTheInstalledTree
    COMMAND ${CMAKE_COMMAND} -DBUILD=${PROJECT_BINARY_DIR}
            -DCONSUMER=${PROJECT_SOURCE_DIR}/examples/straighten -DREADME=${PROJECT_SOURCE_DIR}/README.md
            -DWORK=${PROJECT_BINARY_DIR}/install_test -DCC=${CMAKE_C_COMPILER} -DFLAGS=${consumer_flags}
            -P ${CMAKE_CURRENT_SOURCE_DIR}/abi/check_install.cmake)
