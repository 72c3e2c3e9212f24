# SPDX-License-Identifier: BSD-3-Clause
# Every test function is a CTest entry of its own, so that each has its own process, its
# own time limit and its own line in the summary.
set(LUM_DISCOVER_TESTS ${CMAKE_CURRENT_LIST_DIR}/DiscoverTests.cmake)

# The daemon as it is installed must pass what the one with sanitizers passes.
set(LUMD_RELEASE_BUILD "" CACHE PATH
    "A second build, whose lumd the tests of the daemon run as well, as \"release.<name>.<function>\"")

# Linking and starting some 150 executables takes longer than what is in them.
option(LUMD_TEST_ROOMS "One test executable for each folder, in place of one for each test" OFF)

# lum_add_test(<name> [USES_DAEMON] [ALONE] SOURCES <file>... LINKS <target>...)
#
# A Qt Test class against the fake libgbinder, as the executable <name>. Its functions are found when
# it was built, as the entries "<name>.<function>". USES_DAEMON: it starts lumd (DaemonProcess), and
# with LUMD_RELEASE_BUILD that of the second build too.
#
# With LUMD_TEST_ROOMS the target <name> has the objects alone, and the executable is a link to the
# folder's, which looks at the name that it was started by. Not so with ALONE: a test that puts
# functions of its own in the place of a library's.
function(lum_add_test name)
    cmake_parse_arguments(ARG "USES_DAEMON;ALONE" "" "SOURCES;LINKS" ${ARGN})
    set(libraries ${ARG_LINKS} lum_test_support lum_rules)
    if(LUMD_TEST_ROOMS AND NOT ARG_ALONE)
        add_library(${name} OBJECT)
        set_target_properties(${name} PROPERTIES AUTOMOC OFF)
        lum_moc_sources(${name} ${ARG_SOURCES})
        lum_add_to_room(${name} ${libraries})
        set(executable ${LUM_ROOM})
    else()
        add_executable(${name} ${ARG_SOURCES})
        lum_discover_tests(${name})
        set(executable ${name})
    endif()
    set_target_properties(${name} PROPERTIES GBINDER_LIBRARY fakegbinder)
    if(ARG_USES_DAEMON)
        add_dependencies(${name} lumd)
        set_property(TARGET ${executable} APPEND PROPERTY TESTS_OF_DAEMON ${name})
    endif()
    target_link_libraries(${name} PRIVATE ${libraries} lum_test_main)
    target_precompile_headers(${name} REUSE_FROM lum_test_support)
endfunction()

# The sources of a target, and what moc makes of those that include that. CMake's own AUTOMOC
# compiles a source more for each target.
function(lum_moc_sources name)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/moc)
    file(MAKE_DIRECTORY ${folder})
    foreach(source IN LISTS ARGN)
        get_filename_component(stem ${source} NAME_WE)
        file(STRINGS ${source} includes REGEX "^#include \"${stem}.moc\"")
        if(includes)
            qt5_generate_moc(${source} ${folder}/${stem}.moc TARGET ${name})
            target_sources(${name} PRIVATE ${folder}/${stem}.moc)
        endif()
    endforeach()
    target_sources(${name} PRIVATE ${ARGN})
    target_include_directories(${name} PRIVATE ${folder})
endfunction()

# Adds the objects of a test to the executable of its folder; gives that as LUM_ROOM.
function(lum_add_to_room name)
    get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    set(room tests_${folder})
    if(NOT TARGET ${room})
        add_executable(${room})
        set_target_properties(${room} PROPERTIES
            AUTOMOC OFF LINKER_LANGUAGE CXX GBINDER_LIBRARY fakegbinder)
        target_link_libraries(${room} PRIVATE lum_test_main)
        lum_discover_tests(${room})
    endif()
    target_sources(${room} PRIVATE $<TARGET_OBJECTS:${name}>)
    target_link_libraries(${room} PRIVATE ${ARGN})
    file(CREATE_LINK ${room} ${CMAKE_CURRENT_BINARY_DIR}/${name} SYMBOLIC)
    set(LUM_ROOM ${room} PARENT_SCOPE)
endfunction()

# Makes the entries of a test executable.
function(lum_discover_tests executable)
    set(second_daemon "")
    if(LUMD_RELEASE_BUILD)
        set(second_daemon ${LUMD_RELEASE_BUILD}/daemon/lumd)
    endif()
    set(entries ${CMAKE_CURRENT_BINARY_DIR}/${executable}_entries.cmake)
    set(include_file ${CMAKE_CURRENT_BINARY_DIR}/${executable}_include.cmake)
    add_custom_command(TARGET ${executable} POST_BUILD
        COMMAND ${CMAKE_COMMAND}
            -D TEST_EXECUTABLE=$<TARGET_FILE:${executable}>
            -D "TESTS_OF_DAEMON=$<JOIN:$<TARGET_PROPERTY:${executable},TESTS_OF_DAEMON>,|>"
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
        "    add_test(${executable}_NOT_BUILT ${executable}_NOT_BUILT)\n"
        "endif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${include_file})
endfunction()

# lum_load_into_daemon(<library>): the library is loaded into a lumd without sanitizers, too, and
# so has none itself.
function(lum_load_into_daemon library)
    target_compile_options(${library} PRIVATE -fno-sanitize=all)
    target_link_options(${library} PRIVATE -fno-sanitize=all)
endfunction()

# lum_add_preload(<name> <source>...): a module for DaemonProcess::preload().
function(lum_add_preload name)
    add_library(${name} MODULE ${ARGN})
    target_link_libraries(${name} PRIVATE lum_rules)
    lum_load_into_daemon(${name})
endfunction()
