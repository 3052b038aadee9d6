# Compiler settings that every target of ours shares.
add_library(os_options INTERFACE)
target_compile_options(os_options INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wno-deprecated-declarations
    -fno-omit-frame-pointer)
if(OS_WERROR)
    target_compile_options(os_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(os_options INTERFACE -Wthread-safety)
endif()
target_compile_definitions(os_options INTERFACE QT_NO_KEYWORDS QT_NO_FOREACH
    $<$<OR:$<CONFIG:Debug>,$<BOOL:${OS_CHECK_LOCK_RANKS}>>:OS_CHECK_LOCK_RANKS>)

if(OS_SANITIZE)
    target_compile_options(os_options INTERFACE -fsanitize=${OS_SANITIZE} -fno-sanitize-recover=all)
    target_link_options(os_options INTERFACE -fsanitize=${OS_SANITIZE})
    if(OS_SANITIZE MATCHES "undefined")
        # Objects of the toolkit's and of interfaces cross libraries whose type information is hidden.
        target_compile_options(os_options INTERFACE -fno-sanitize=vptr)
    endif()
endif()
if(OS_COVERAGE)
    target_compile_options(os_options INTERFACE --coverage)
    target_link_options(os_options INTERFACE --coverage)
endif()

# Compilations are shared between presets and runs where ccache is installed.
find_program(OS_CCACHE ccache)
if(OS_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${OS_CCACHE})
endif()
