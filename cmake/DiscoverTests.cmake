# SPDX-License-Identifier: BSD-3-Clause
# Writes the CTest entries of one test executable; run after it was built.
#
# TEST_EXECUTABLE  the executable
# TEST_NAME        what the names of the entries begin with
# SECOND_DAEMON    another lumd, that each function is to run with as well; may be empty
# ENTRIES          the file to write
# MEASURES_COVERAGE    whether the line coverage is read off after all of them
# Seconds. A busy machine takes many times what a test takes alone.
set(time_limit 240)

execute_process(
    COMMAND ${TEST_EXECUTABLE} -functions
    OUTPUT_VARIABLE output
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${TEST_EXECUTABLE} -functions: ${result}")
endif()
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*\\(\\)" functions "${output}")
if(NOT functions)
    message(FATAL_ERROR "${TEST_EXECUTABLE} has no test function")
endif()
set(properties "TIMEOUT ${time_limit}")
if(MEASURES_COVERAGE)
    string(APPEND properties " FIXTURES_REQUIRED coverage")
endif()
set(text "")
foreach(function IN LISTS functions)
    string(REPLACE "()" "" function "${function}")
    string(APPEND text
        "add_test([=[${TEST_NAME}.${function}]=] [=[${TEST_EXECUTABLE}]=] [=[${function}]=])\n"
        "set_tests_properties([=[${TEST_NAME}.${function}]=] PROPERTIES ${properties})\n")
    if(SECOND_DAEMON)
        set(name "release.${TEST_NAME}.${function}")
        string(APPEND text
            "add_test([=[${name}]=] [=[${TEST_EXECUTABLE}]=] [=[${function}]=])\n"
            "set_tests_properties([=[${name}]=] PROPERTIES ${properties}\n"
            "    ENVIRONMENT [=[LUMD_PROGRAM=${SECOND_DAEMON}]=])\n")
    endif()
endforeach()
file(WRITE ${ENTRIES} "${text}")
