# Debian packages, which scripts/package.sh makes from a folder with the static library and the command, and one with the
# shared library: CPACK_INSTALL_CMAKE_PROJECTS names both.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME arborist)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The arborist authors <arborist@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library c_library development command python)
# What each folder adds.
set(CPACK_COMPONENTS_STATIC c_library development command python)
set(CPACK_COMPONENTS_SHARED library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(library libarborist${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library that a host loads to find what is wrong with a device.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_GENERATE_SHLIBS ON)

set(c_library libarborist-c${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_C_LIBRARY_PACKAGE_NAME ${c_library})
set(CPACK_DEBIAN_C_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_C_LIBRARY_DESCRIPTION "The C interface, for hosts in other languages: answers in JSON.")
set(CPACK_DEBIAN_C_LIBRARY_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libarborist-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, the static library, and files for CMake and pkg-config.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${library} (= ${PROJECT_VERSION}), ${c_library} (= ${PROJECT_VERSION})")
# What the static library is linked with.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS
    "libtinyxml2-dev, libsqlite3-dev, libjsoncpp-dev, libminizip-dev, zlib1g-dev")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME arborist)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_COMMAND_DESCRIPTION "The command that diagnoses captured devices, explains the results and checks rule sets.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-arborist)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "The Python package: detections, explanations and repairs as Python objects.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.9), python3-cffi-backend")
include(CPack)
