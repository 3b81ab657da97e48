include(CMakePackageConfigHelpers)

set(NORVANE_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Norvane)
set(NORVANE_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/norvane)

# The tool, the plug-in, and the host library with its headers.
install(TARGETS norvane RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS Norvane LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/norvane)
install(TARGETS norvane_sdk norvane_host EXPORT NorvaneTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/sdk/headers/core DESTINATION ${NORVANE_HEADER_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/host DESTINATION ${NORVANE_HEADER_DIR}
    FILES_MATCHING PATTERN "*.h")

# find_package(Norvane) gives Norvane::sdk (interfaces) and Norvane::host (the reference host).
set_target_properties(norvane_sdk PROPERTIES EXPORT_NAME sdk)
set_target_properties(norvane_host PROPERTIES EXPORT_NAME host)
install(EXPORT NorvaneTargets NAMESPACE Norvane:: FILE NorvaneTargets.cmake
    DESTINATION ${NORVANE_PACKAGE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/NorvaneConfig.cmake.in
    ${PROJECT_BINARY_DIR}/NorvaneConfig.cmake INSTALL_DESTINATION ${NORVANE_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/NorvaneConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/NorvaneConfig.cmake
    ${PROJECT_BINARY_DIR}/NorvaneConfigVersion.cmake DESTINATION ${NORVANE_PACKAGE_DIR})
