include(CMakePackageConfigHelpers)
install(TARGETS arborist EXPORT arborist-targets
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILE_SET generated_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT arborist-targets NAMESPACE arborist:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/arborist)
configure_package_config_file(cmake/arborist-config.cmake.in ${PROJECT_BINARY_DIR}/arborist-config.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/arborist)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/arborist-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/arborist-config.cmake ${PROJECT_BINARY_DIR}/arborist-config-version.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/arborist)
