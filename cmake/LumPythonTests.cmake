# SPDX-License-Identifier: BSD-3-Clause
# lum_add_python_tests(NAME... [PROPERTIES PROPERTY VALUE...])
#
# Each test method of NAME.py in this folder becomes the entry NAME.METHOD, with these properties.
function(lum_add_python_tests)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "" PROPERTIES)
    foreach(name IN LISTS arg_UNPARSED_ARGUMENTS)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${name}.py)
        file(STRINGS ${name}.py lines REGEX "^(class|    def test)")
        if(NOT lines MATCHES "def test")
            message(FATAL_ERROR "${name}.py has no test")
        endif()
        foreach(line IN LISTS lines)
            if(line MATCHES "^class ([A-Za-z]+)")
                set(class ${CMAKE_MATCH_1})
            elseif(line MATCHES "def (test[A-Za-z0-9_]+)")
                set(entry ${name}.${CMAKE_MATCH_1})
                add_test(NAME ${entry}
                    COMMAND /usr/bin/python3 -B ${name}.py ${class}.${CMAKE_MATCH_1}
                    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
                set_tests_properties(${entry} PROPERTIES ${arg_PROPERTIES})
            endif()
        endforeach()
    endforeach()
endfunction()
