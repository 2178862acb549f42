# Precompiled headers hold other people's headers only, those that many files of a target include. Each file still names
# every header that it uses: the preset release and scripts/check-code.sh compile without them, and fail where one is
# missing.
option(ARBORIST_PRECOMPILE "Precompile the headers that many files include" ON)

# Optimising, GCC 12 forgets that what it inlines out of a precompiled header is the system's, and warns of overflows
# in plain additions of strings; there are none. The preset release keeps these warnings.
set(ARBORIST_PRECOMPILED_FLAGS
    "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-Wno-array-bounds;-Wno-stringop-overflow>")

# arborist_precompile(TARGET HEADER...): TARGET precompiles common headers of the standard library and each HEADER.
function(arborist_precompile target)
    if(ARBORIST_PRECOMPILE)
        target_precompile_headers(${target} PRIVATE <algorithm> <array> <charconv> <cstdint> <filesystem> <functional>
            <map> <memory> <optional> <string> <string_view> <unordered_map> <utility> <vector> ${ARGN})
        target_compile_options(${target} PRIVATE "${ARBORIST_PRECOMPILED_FLAGS}")
        # With the time in it, what ccache stored would be refused as older than the headers.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
    endif()
endfunction()

# arborist_share_precompiled(TARGET OWNER): TARGET uses the precompiled header of OWNER, which has the same flags.
function(arborist_share_precompiled target owner)
    if(ARBORIST_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM ${owner})
        target_compile_options(${target} PRIVATE "${ARBORIST_PRECOMPILED_FLAGS}")
    endif()
endfunction()
