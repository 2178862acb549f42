add_library(arborist_sanitizers INTERFACE)
if(ARBORIST_SANITIZE)
    target_compile_options(arborist_sanitizers INTERFACE
        -fsanitize=${ARBORIST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(arborist_sanitizers INTERFACE -fsanitize=${ARBORIST_SANITIZE})
endif()
if(ARBORIST_COVERAGE)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
        message(FATAL_ERROR "ARBORIST_COVERAGE needs clang++")
    endif()
    # Relocated counters can lie in the profile's file itself: a process that is killed or ends by _exit has counted, too.
    # Processes share them, so that each is counted atomically: the least difference passes for a condition that was false.
    target_compile_options(arborist_sanitizers INTERFACE -fprofile-instr-generate -fcoverage-mapping -fprofile-update=atomic
        "SHELL:-mllvm -runtime-counter-relocation")
    target_link_options(arborist_sanitizers INTERFACE -fprofile-instr-generate)
endif()
