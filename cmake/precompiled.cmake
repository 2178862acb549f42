# Precompiled headers hold other people's headers only, those that many files of a target include. Each file still names
# every header that it uses: the preset asan compiles without precompiled headers and fails where one is missing.
option(ARBORIST_PRECOMPILE "Precompile the headers that many files include" ON)

# arborist_precompile(TARGET HEADER...): TARGET precompiles common headers of the standard library and each HEADER.
function(arborist_precompile target)
    if(ARBORIST_PRECOMPILE)
        target_precompile_headers(${target} PRIVATE <algorithm> <array> <charconv> <cstdint> <filesystem> <functional>
            <map> <memory> <optional> <string> <string_view> <unordered_map> <utility> <vector> ${ARGN})
        # With the time in it, what ccache stored would be refused as older than the headers.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>)
    endif()
endfunction()

# arborist_share_precompiled(TARGET OWNER): TARGET uses the precompiled header of OWNER, which has the same flags.
function(arborist_share_precompiled target owner)
    if(ARBORIST_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM ${owner})
    endif()
endfunction()
