# Cross-builds for 64-bit Windows with Debian's mingw-w64. The variant with POSIX threads has std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# What scripts/windows-dependencies.sh has built, and nothing of this machine but programs.
set(ARBORIST_WINDOWS_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies/root)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ARBORIST_WINDOWS_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH ${ARBORIST_WINDOWS_ROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${ARBORIST_WINDOWS_ROOT}/lib/pkgconfig)

# A program is one file, without the compiler's own libraries beside it. Windows 10 is the oldest that is supported.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_C_FLAGS_INIT -D_WIN32_WINNT=0x0A00)
# Without -mbig-obj an object file has no room for the sections of a large test.
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -Wa,-mbig-obj")
