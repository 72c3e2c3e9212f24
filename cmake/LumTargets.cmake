# SPDX-License-Identifier: BSD-3-Clause
# The two kinds of target of this project, with the rules that all of them keep.

set(CMAKE_COMPILE_WARNING_AS_ERROR ON
    CACHE BOOL "Warnings are errors; who packages for another compiler may switch it off")

# Warnings and language rules; every target of the project's own code takes them.
add_library(lum_rules INTERFACE)
target_compile_options(lum_rules INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # Qt's logging macros are called with nothing for their dots; gcc counts no signs among the
    # conversions, and its library uses what it calls deprecated.
    "$<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments;-Wno-c++20-extensions>"
    "$<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion;-Wno-deprecated-declarations>")
target_compile_definitions(lum_rules INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)

# lum_library(<name> FOLDER <folder> SOURCES <file>...
#             [LINKS <target>...] [PRIVATE_LINKS <target>...])
#
# A static library for one folder. Its headers are included as "<folder>/<header>",
# and only targets that link the library see them: the include path holds nothing
# but a link to that one folder, so an include against the direction of the
# architecture does not compile. LINKS are what the headers use too, PRIVATE_LINKS what the
# sources alone use.
function(lum_library name)
    cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
    set(include_root ${PROJECT_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${include_root})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_root}/${ARG_FOLDER} SYMBOLIC)
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${include_root})
    target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS} lum_rules)
endfunction()
