# SPDX-License-Identifier: BSD-3-Clause
# Builds and installs the stand-ins as shared libraries, then lumd against them, and looks at
# what lumd came out linked to.
#
# SOURCE_DIR         the checkout
# WORK_DIR           a folder of this script's own, which it empties
# CXX_COMPILER       and COMPILER_LAUNCHER, as in the build that this test belongs to
# READELF            the tool
set(prefix ${WORK_DIR}/device)
set(common
    -G Ninja
    -D CMAKE_CXX_COMPILER=${CXX_COMPILER}
    -D CMAKE_CXX_COMPILER_LAUNCHER=${COMPILER_LAUNCHER}
    # One source for all of a target: a third of the time.
    -D CMAKE_UNITY_BUILD=ON
    -D CMAKE_UNITY_BUILD_BATCH_SIZE=0)

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} ${common} -S ${SOURCE_DIR}/platform -B ${WORK_DIR}/platform
    -D CMAKE_INSTALL_PREFIX=${prefix} -D CMAKE_INSTALL_LIBDIR=lib)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/platform --target install)

set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig:$ENV{PKG_CONFIG_PATH})
run(${CMAKE_COMMAND} ${common} -S ${SOURCE_DIR} -B ${WORK_DIR}/lumd
    -D LUMD_PLATFORM=device -D BUILD_TESTING=OFF)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/lumd --target lumd)

execute_process(
    COMMAND ${READELF} --dynamic ${WORK_DIR}/lumd/daemon/lumd
    OUTPUT_VARIABLE dynamic
    COMMAND_ERROR_IS_FATAL ANY)
foreach(library notification quillfinpolicy vsu timed-qt5)
    if(NOT dynamic MATCHES "NEEDED[^\n]*\\[lib${library}\\.so")
        message(SEND_ERROR "lumd is not linked to the device's ${library}:\n${dynamic}")
    endif()
endforeach()
if(EXISTS ${WORK_DIR}/lumd/platform)
    message(SEND_ERROR "the device build has built the stand-ins")
endif()
file(REMOVE_RECURSE ${WORK_DIR})
