# SPDX-License-Identifier: BSD-3-Clause
# Writes the CTest entries of one test executable; run after it was built.
#
# TEST_EXECUTABLE  the executable; beside it lies one by the name of each of its tests
# TESTS_OF_DAEMON  those of them that start lumd, separated by "|"
# SECOND_DAEMON    another lumd, that each function of those is to run with as well; may be empty
# ENTRIES          the file to write
# MEASURES_COVERAGE    whether the line coverage is read off after all of them
cmake_minimum_required(VERSION 3.25)
# Seconds. A busy machine takes many times what a test takes alone.
set(time_limit 240)

execute_process(
    COMMAND ${TEST_EXECUTABLE} -entries
    OUTPUT_VARIABLE output
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${TEST_EXECUTABLE} -entries: ${result}")
endif()
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*\\.[A-Za-z_][A-Za-z0-9_]*" entries "${output}")
if(NOT entries)
    message(FATAL_ERROR "${TEST_EXECUTABLE} has no test function")
endif()
string(REPLACE "|" ";" tests_of_daemon "${TESTS_OF_DAEMON}")
cmake_path(GET TEST_EXECUTABLE PARENT_PATH folder)
set(properties "TIMEOUT ${time_limit}")
if(MEASURES_COVERAGE)
    string(APPEND properties " FIXTURES_REQUIRED coverage")
endif()
set(text "")
foreach(entry IN LISTS entries)
    string(REGEX MATCH "^(.*)\\.(.*)$" entry "${entry}")
    set(command "[=[${folder}/${CMAKE_MATCH_1}]=] [=[${CMAKE_MATCH_2}]=]")
    string(APPEND text
        "add_test([=[${entry}]=] ${command})\n"
        "set_tests_properties([=[${entry}]=] PROPERTIES ${properties})\n")
    if(SECOND_DAEMON AND CMAKE_MATCH_1 IN_LIST tests_of_daemon)
        set(name "release.${entry}")
        string(APPEND text
            "add_test([=[${name}]=] ${command})\n"
            "set_tests_properties([=[${name}]=] PROPERTIES ${properties}\n"
            "    ENVIRONMENT [=[LUMD_PROGRAM=${SECOND_DAEMON}]=])\n")
    endif()
endforeach()
file(WRITE ${ENTRIES} "${text}")
