# What a host, a developer and a user of the command install. The static and the shared library are built in folders of their
# own and can be installed to one place: each has its own file of targets, and the package takes the one that is asked for.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/arborist)
get_target_property(type arborist TYPE)
string(REPLACE "_LIBRARY" "" kind ${type})
string(TOLOWER ${kind} kind)

install(TARGETS arborist EXPORT arborist-${kind}-targets
    LIBRARY COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    FILE_SET generated_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT arborist-${kind}-targets NAMESPACE arborist:: DESTINATION ${package_dir} COMPONENT development)

# The C interface holds the engine, whatever kind of it is installed beside it.
if(ARBORIST_BUILD_C)
    install(TARGETS arborist_c EXPORT arborist-c-targets
        LIBRARY COMPONENT c_library NAMELINK_COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
    install(EXPORT arborist-c-targets NAMESPACE arborist:: DESTINATION ${package_dir} COMPONENT development)
endif()

configure_package_config_file(cmake/arborist-config.cmake.in ${PROJECT_BINARY_DIR}/arborist-config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/arborist-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/arborist-config.cmake ${PROJECT_BINARY_DIR}/arborist-config-version.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The prefix is known when the package is installed, not when it is built.
function(install_pkg_config name)
    install(CODE "set(template [[${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in]])
set(PROJECT_VERSION [[${PROJECT_VERSION}]])
set(PROJECT_DESCRIPTION [[${PROJECT_DESCRIPTION}]])
set(CMAKE_INSTALL_INCLUDEDIR [[${CMAKE_INSTALL_INCLUDEDIR}]])
set(CMAKE_INSTALL_LIBDIR [[${CMAKE_INSTALL_LIBDIR}]])
configure_file(\"\${template}\" [[${PROJECT_BINARY_DIR}/${name}.pc]] @ONLY)" COMPONENT development)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
install_pkg_config(arborist)
if(ARBORIST_BUILD_C)
    install_pkg_config(arborist-c)
endif()

# Debian's place for the licence of each package.
foreach(owner IN ITEMS library:libarborist${PROJECT_VERSION_MAJOR} c_library:libarborist-c${PROJECT_VERSION_MAJOR}
        development:libarborist-dev command:arborist python:python3-arborist)
    string(REPLACE ":" ";" owner ${owner})
    list(GET owner 0 component)
    list(GET owner 1 package)
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} RENAME copyright COMPONENT ${component})
endforeach()

include(cmake/packages.cmake)
