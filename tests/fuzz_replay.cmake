# Replays the corpus that the fuzz targets have built up as ordinary tests: fuzz/<family>_fuzzer.cpp on
# the library's objects, fuzz/<room>/<parser>_fuzzer.cpp on a room of the program.
function(add_fuzz_replay source library)
    get_filename_component(fuzzer ${source} NAME_WE)
    string(REGEX REPLACE "_fuzzer$" "" name ${fuzzer})
    add_executable(${fuzzer}_replay ${source} support/fuzz_replay_main.cpp
        support/sanitizer_options.cpp)
    target_link_libraries(${fuzzer}_replay PRIVATE ${library})
    target_include_directories(${fuzzer}_replay PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    add_test(NAME FuzzCorpus.${name}
        COMMAND ${fuzzer}_replay ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
endfunction()

file(GLOB fuzzers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzzer.cpp)
foreach(source IN LISTS fuzzers)
    add_fuzz_replay(${source} vemoprepro_objects)
endforeach()
if(TARGET vemoprepro)
    file(GLOB fuzzers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/files/*_fuzzer.cpp)
    foreach(source IN LISTS fuzzers)
        add_fuzz_replay(${source} vemoprepro_files)
    endforeach()
endif()
