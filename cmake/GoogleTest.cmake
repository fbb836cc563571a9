# GoogleTest is built from its packaged sources with whatever compiler and sanitizer the tests are built with.
set(KELINS_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Sources of GoogleTest")
if(NOT EXISTS ${KELINS_GOOGLETEST_SOURCE}/CMakeLists.txt)
    message(FATAL_ERROR "GoogleTest's sources are missing at ${KELINS_GOOGLETEST_SOURCE}: install the package googletest")
endif()

set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
block(SCOPE_FOR VARIABLES)
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
    set(CMAKE_EXPORT_COMPILE_COMMANDS OFF)
    add_subdirectory(${KELINS_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endblock()
include(GoogleTest)
