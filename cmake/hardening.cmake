# Flags that leave less room for an attack through a file that the command reads. The linker's cost nothing and are there
# in every build; the compiler's need an optimised one. The engine's own code keeps the flags that its host chooses.
option(ARBORIST_HARDEN "Harden the command against attacks on its memory" ON)

add_library(arborist_hardening INTERFACE)
if(ARBORIST_HARDEN AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT ARBORIST_SANITIZE)
    include(CheckCXXCompilerFlag)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
    foreach(flag IN ITEMS -fstack-protector-strong -fcf-protection)
        string(MAKE_C_IDENTIFIER "has${flag}" has_flag)
        check_cxx_compiler_flag(${flag} ${has_flag})
        if(${has_flag})
            target_compile_options(arborist_hardening INTERFACE $<${optimised}:${flag}>)
        endif()
    endforeach()
    # Level 3 knows more sizes of objects than 2, and is older compilers' warning. Some compilers have a level by default.
    set(level 2)
    if(CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
        set(level 3)
    endif()
    target_compile_options(arborist_hardening INTERFACE
        "$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=${level}>")
    target_link_options(arborist_hardening INTERFACE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
