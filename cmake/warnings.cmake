# Hangs on our own targets only; a user of arborist::arborist never sees these flags.
add_library(arborist_warnings INTERFACE)
target_compile_options(arborist_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2
    # Optimising, GCC 12 sees overlapping copies in plain additions of strings; there are none.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<BOOL:${ARBORIST_WARNINGS_AS_ERRORS}>:-Werror>)
