# Everything comes from the system's packages; nothing is downloaded.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(tinyxml2 REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(ZLIB REQUIRED)
pkg_check_modules(JSONCPP REQUIRED IMPORTED_TARGET jsoncpp)
pkg_check_modules(MINIZIP REQUIRED IMPORTED_TARGET minizip)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND PROJECT_IS_TOP_LEVEL)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
