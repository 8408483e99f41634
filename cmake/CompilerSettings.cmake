# Warnings are errors; the sanitizer of a preset reaches every target.
set(TESSELLUM_SANITIZE "" CACHE STRING "Value of -fsanitize= for every target, empty for none")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_DEPRECATED_WARNINGS)
if(TESSELLUM_SANITIZE)
    add_compile_options(-fsanitize=${TESSELLUM_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TESSELLUM_SANITIZE})
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # A precompiled header is part of the hash only by its content, so that ccache may serve what uses it.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE_PROGRAM})
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
endif()
