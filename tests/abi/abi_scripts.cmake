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

# The floors of src/, from the ground up. The public headers stand between the families and src/api: only
# src/api sees them.
add_test(NAME Library.IncludesPointDown COMMAND ${CMAKE_COMMAND} -DROOT=${PROJECT_SOURCE_DIR}/src
    "-DFLOORS=frame | common threads diag | simd | simd/bits simd/pixels | simd/blocks | ink | grey |\
 deskew geometry cleaning/specks cleaning/lines cleaning/borders binarization |\
 binarization/gradient binarization/statistics | binarization/pipeline | vemoprepro | api"
    -P ${CMAKE_CURRENT_SOURCE_DIR}/check_includes.cmake)
