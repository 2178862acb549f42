# Hangs on our own targets only; a user of arborist::arborist never sees these flags.
add_library(arborist_warnings INTERFACE)
target_compile_options(arborist_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2
    # Optimising, GCC 12 sees overlapping copies in plain additions of strings; there are none.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<BOOL:${ARBORIST_WARNINGS_AS_ERRORS}>:-Werror>)
# g++ 12 sees an overlap in operator+ of a literal and a text where there is none, in optimised builds only.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(arborist_warnings INTERFACE -Wno-restrict)
endif()
