# Replays the corpus that the fuzz targets have built up as ordinary tests.
file(GLOB fuzzers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzzer.cpp)
foreach(source IN LISTS fuzzers)
    get_filename_component(fuzzer ${source} NAME_WE)
    string(REGEX REPLACE "_fuzzer$" "" family ${fuzzer})
    add_executable(${fuzzer}_replay ${source} support/fuzz_replay_main.cpp
        support/sanitizer_options.cpp)
    target_link_libraries(${fuzzer}_replay PRIVATE vemoprepro_objects)
    add_test(NAME FuzzCorpus.${family}
        COMMAND ${fuzzer}_replay ${PROJECT_SOURCE_DIR}/fuzz/corpus/${family})
endforeach()
