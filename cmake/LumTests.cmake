# SPDX-License-Identifier: BSD-3-Clause
# Every test function is a CTest entry of its own, so that each has its own process, its
# own time limit and its own line in the summary.
set(LUM_DISCOVER_TESTS ${CMAKE_CURRENT_LIST_DIR}/DiscoverTests.cmake)

# The daemon as it is installed must pass what the one with sanitizers passes.
set(LUMD_RELEASE_BUILD "" CACHE PATH
    "A second build, whose lumd the tests of the daemon run as well, as \"release.<name>.<function>\"")

# lum_add_test(<name> [USES_DAEMON] SOURCES <file>... LINKS <target>...)
#
# A Qt Test executable against the fake libgbinder. Its functions are found when it was
# built, as the entries "<name>.<function>". USES_DAEMON: it starts lumd (DaemonProcess), and with
# LUMD_RELEASE_BUILD that of the second build too.
function(lum_add_test name)
    cmake_parse_arguments(ARG "USES_DAEMON" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES GBINDER_LIBRARY fakegbinder)
    set(second_daemon "")
    if(ARG_USES_DAEMON)
        add_dependencies(${name} lumd)
        if(LUMD_RELEASE_BUILD)
            set(second_daemon ${LUMD_RELEASE_BUILD}/daemon/lumd)
        endif()
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} lum_test_support lum_rules)
    target_precompile_headers(${name} REUSE_FROM lum_test_support)
    set(entries ${CMAKE_CURRENT_BINARY_DIR}/${name}_entries.cmake)
    set(include_file ${CMAKE_CURRENT_BINARY_DIR}/${name}_include.cmake)
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND ${CMAKE_COMMAND}
            -D TEST_EXECUTABLE=$<TARGET_FILE:${name}>
            -D TEST_NAME=${name}
            -D SECOND_DAEMON=${second_daemon}
            -D MEASURES_COVERAGE=${LUMD_COVERAGE}
            -D ENTRIES=${entries}
            -P ${LUM_DISCOVER_TESTS}
        BYPRODUCTS ${entries}
        VERBATIM)
    # An executable that was not built must show as a failure, not as a shorter list.
    file(WRITE ${include_file}
        "if(EXISTS \"${entries}\")\n"
        "    include(\"${entries}\")\n"
        "else()\n"
        "    add_test(${name}_NOT_BUILT ${name}_NOT_BUILT)\n"
        "endif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${include_file})
endfunction()

# lum_load_into_daemon(<library>): the library is loaded into a lumd without sanitizers, too, and
# so has none itself; nor is it measured.
function(lum_load_into_daemon library)
    target_compile_options(${library} PRIVATE
        -fno-sanitize=all -fno-profile-arcs -fno-test-coverage)
    target_link_options(${library} PRIVATE -fno-sanitize=all)
endfunction()

# lum_add_preload(<name> <source>...): a module for DaemonProcess::preload().
function(lum_add_preload name)
    add_library(${name} MODULE ${ARGN})
    target_link_libraries(${name} PRIVATE lum_rules)
    lum_load_into_daemon(${name})
endfunction()
