# SPDX-License-Identifier: BSD-3-Clause
# The version stands in CMakeLists.txt; whoever else tells one must agree.
#
# SOURCE_DIR    the checkout
# VERSION       the project's

# told(<file> <pattern with the version as its first group>): the first place in the file decides.
function(told file pattern)
    file(READ ${SOURCE_DIR}/${file} text)
    if(NOT "\n${text}" MATCHES "\n${pattern}")
        message(SEND_ERROR "${file} tells no version")
    elseif(NOT CMAKE_MATCH_1 STREQUAL VERSION)
        message(SEND_ERROR "${file} tells of ${CMAKE_MATCH_1}, the project is at ${VERSION}")
    endif()
endfunction()

told(NEWS.md "## ([^\n]*)\n")
told(debian/changelog "lumd \\(([^\n)]*)\\) ")
told(rpm/lumd.spec "Version: *([^\n]*)\n")
told(rpm/lumd.spec "%changelog\n[^\n]* - ([^\n]*)-[0-9]+\n")
