# SPDX-License-Identifier: BSD-3-Clause
# Finds libgbinder: the system's own where it is installed (a device's SDK, newer
# Debian), else the packages that tools/fetch-gbinder unpacked into the checkout.
#
# GBinder::Headers   include folders alone. The libraries of this project compile
#                    against it and leave the choice of the library to the
#                    executable (see binder/CMakeLists.txt).
# GBinder::GBinder   the library itself, with its headers.

find_package(PkgConfig REQUIRED)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0)
pkg_check_modules(PC_GBINDER QUIET libgbinder libglibutil)

set(GBINDER_UNPACKED ${CMAKE_CURRENT_LIST_DIR}/../.deps/gbinder/usr)
find_path(GBINDER_INCLUDE_DIR gbinder.h
    HINTS ${PC_GBINDER_INCLUDE_DIRS} ${GBINDER_UNPACKED}/include PATH_SUFFIXES gbinder)
find_path(GLIBUTIL_INCLUDE_DIR gutil_types.h
    HINTS ${PC_GBINDER_INCLUDE_DIRS} ${GBINDER_UNPACKED}/include PATH_SUFFIXES gutil)
find_library(GBINDER_LIBRARY gbinder
    HINTS ${PC_GBINDER_LIBRARY_DIRS} ${GBINDER_UNPACKED}/lib/${CMAKE_LIBRARY_ARCHITECTURE})
find_library(GLIBUTIL_LIBRARY glibutil
    HINTS ${PC_GBINDER_LIBRARY_DIRS} ${GBINDER_UNPACKED}/lib/${CMAKE_LIBRARY_ARCHITECTURE})

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GBinder
    REQUIRED_VARS GBINDER_LIBRARY GBINDER_INCLUDE_DIR GLIBUTIL_LIBRARY GLIBUTIL_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "run tools/setup, which fetches it where the system has none")

if(GBinder_FOUND AND NOT TARGET GBinder::GBinder)
    add_library(GBinder::Headers INTERFACE IMPORTED)
    target_include_directories(GBinder::Headers SYSTEM INTERFACE
        ${GBINDER_INCLUDE_DIR} ${GLIBUTIL_INCLUDE_DIR})
    target_link_libraries(GBinder::Headers INTERFACE PkgConfig::GLIB)

    add_library(GBinder::GBinder SHARED IMPORTED)
    set_target_properties(GBinder::GBinder PROPERTIES
        IMPORTED_LOCATION ${GBINDER_LIBRARY}
        IMPORTED_LINK_DEPENDENT_LIBRARIES ${GLIBUTIL_LIBRARY})
    target_link_libraries(GBinder::GBinder INTERFACE GBinder::Headers ${GLIBUTIL_LIBRARY})
endif()
