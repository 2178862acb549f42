# Everything comes from the system's packages; nothing is downloaded.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(tinyxml2 REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(ZLIB REQUIRED)
find_package(tsl-robin-map REQUIRED)
pkg_check_modules(JSONCPP REQUIRED IMPORTED_TARGET jsoncpp)
pkg_check_modules(MINIZIP REQUIRED IMPORTED_TARGET minizip)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND PROJECT_IS_TOP_LEVEL)
    # Without this sloppiness ccache stores nothing that was compiled with a precompiled header. In depend mode it reads
    # the included files from the compiler's list of them, which saves a run of the preprocessor for each file.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_DEPEND=1 ${CCACHE_PROGRAM})
endif()
