# SPDX-License-Identifier: BSD-3-Clause
# Compiles a source of one line that includes HEADER, with INCLUDE_FOLDERS alone (separated by
# "|"), and compares the outcome with VERDICT: MAY compiles, MAY_NOT fails because the header
# is not found, and for no other reason.
cmake_minimum_required(VERSION 3.25)

# A header of the project that is not there at all would prove nothing.
if(HEADER MATCHES "/" AND NOT EXISTS "${SOURCE_ROOT}/${HEADER}")
    message(FATAL_ERROR "${HEADER} does not exist")
endif()

string(REPLACE "|" ";" folders "${INCLUDE_FOLDERS}")
list(TRANSFORM folders PREPEND "-I")
execute_process(
    COMMAND ${CMAKE_COMMAND} -E echo "#include <${HEADER}>"
    COMMAND ${COMPILER} -x c++ -std=c++17 -fPIC -fsyntax-only ${folders} -
    ERROR_VARIABLE errors
    RESULTS_VARIABLE results)
list(GET results 1 result)

string(REGEX MATCH "error: '?${HEADER}'?(: No such file| file not found)" missing
    "${errors}")
if(VERDICT STREQUAL "MAY")
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${HEADER} does not compile:\n${errors}")
    endif()
elseif(VERDICT STREQUAL "MAY_NOT")
    if(result EQUAL 0)
        message(FATAL_ERROR "${HEADER} compiles")
    elseif(NOT missing)
        message(FATAL_ERROR "${HEADER} fails for another reason:\n${errors}")
    endif()
else()
    message(FATAL_ERROR "no such verdict: ${VERDICT}")
endif()
