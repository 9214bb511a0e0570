# Headers, library, CMake package, pkg-config file and licence.

install(TARGETS vemoprepro16 EXPORT vemoprepro16-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vemoprepro DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/vemoprepro16)
install(EXPORT vemoprepro16-targets NAMESPACE vemoprepro16:: DESTINATION ${package_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/vemoprepro16-config.cmake.in
    ${PROJECT_BINARY_DIR}/generated/vemoprepro16-config.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/generated/vemoprepro16-config-version.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/generated/vemoprepro16-config.cmake
              ${PROJECT_BINARY_DIR}/generated/vemoprepro16-config-version.cmake
        DESTINATION ${package_folder})

configure_file(${PROJECT_SOURCE_DIR}/cmake/vemoprepro16.pc.in
    ${PROJECT_BINARY_DIR}/generated/vemoprepro16.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/generated/vemoprepro16.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
