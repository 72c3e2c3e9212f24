# SPDX-License-Identifier: BSD-3-Clause
# The device libraries, as the targets Platform::notification, Platform::policy,
# Platform::vsu and Platform::timed: found by pkg-config on a device, stand-ins of the
# project anywhere else.

set(LUMD_PLATFORM host CACHE STRING "Where the device libraries come from: host or device")
set_property(CACHE LUMD_PLATFORM PROPERTY STRINGS host device)

set(LUMD_NOTIFICATION_MODULE notification CACHE STRING "pkg-config module of the notification library")
set(LUMD_POLICY_MODULE quillfinpolicy CACHE STRING "pkg-config module of the device policy")
set(LUMD_VSU_MODULE vsu CACHE STRING "pkg-config module of the repository manager")
set(LUMD_TIMED_MODULE timed-qt5 CACHE STRING "pkg-config module of the time daemon's client")

function(lum_device_library name module)
    pkg_check_modules(PLATFORM_${name} REQUIRED IMPORTED_TARGET GLOBAL ${module})
    add_library(Platform::${name} ALIAS PkgConfig::PLATFORM_${name})
endfunction()

if(LUMD_PLATFORM STREQUAL host)
    add_subdirectory(platform)
elseif(LUMD_PLATFORM STREQUAL device)
    lum_device_library(notification ${LUMD_NOTIFICATION_MODULE})
    lum_device_library(policy ${LUMD_POLICY_MODULE})
    lum_device_library(vsu ${LUMD_VSU_MODULE})
    lum_device_library(timed ${LUMD_TIMED_MODULE})
else()
    message(FATAL_ERROR "LUMD_PLATFORM is \"${LUMD_PLATFORM}\", not host or device")
endif()
