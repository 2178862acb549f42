# Hangs on our own targets only; a user of arborist::arborist never sees these flags.
add_library(arborist_warnings INTERFACE)
target_compile_options(arborist_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2
    $<$<BOOL:${ARBORIST_WARNINGS_AS_ERRORS}>:-Werror>)
