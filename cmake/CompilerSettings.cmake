# Warnings are errors; the sanitizer of a preset reaches every target.
set(TESSELLUM_SANITIZE "" CACHE STRING "Value of -fsanitize= for every target, empty for none")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_DEPRECATED_WARNINGS)
if(TESSELLUM_SANITIZE)
    # Undefined behaviour ends the program, or a test would print it and pass.
    add_compile_options(-fsanitize=${TESSELLUM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TESSELLUM_SANITIZE})
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # ccache cannot serve what uses a precompiled header without it.
    add_compile_options(-fpch-preprocess)
endif()

find_program(CCACHE_PROGRAM ccache)
mark_as_advanced(CCACHE_PROGRAM)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # A precompiled header counts by its content, not by its time, and paths count from the source folder on:
    # a new clone or a new build folder finds what an older one left.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${CCACHE_PROGRAM})
endif()
