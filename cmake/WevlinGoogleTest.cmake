# Where the tests' GoogleTest and GoogleMock come from. Included by the
# top-level CMakeLists.txt before the tests.
#
# A native build uses the installed libraries (find_package(GTest) in the
# tests). A cross build cannot link the build machine's libraries, so it
# compiles GoogleTest and GoogleMock from source with the cross compiler:
# from WEVLIN_GOOGLETEST_SOURCE_DIR, by default the sources that Debian's
# googletest package installs in /usr/src/googletest. The targets keep the
# names the tests use (GTest::gtest, GTest::gmock, GTest::gmock_main, ...),
# and the tests' find_package(GTest) is pointed at a configuration file that
# only says "found", so the tests read the same either way.
set(WEVLIN_GOOGLETEST_SOURCE_DIR_DEFAULT "")
if(CMAKE_CROSSCOMPILING AND EXISTS "/usr/src/googletest/CMakeLists.txt")
  set(WEVLIN_GOOGLETEST_SOURCE_DIR_DEFAULT "/usr/src/googletest")
endif()
set(WEVLIN_GOOGLETEST_SOURCE_DIR "${WEVLIN_GOOGLETEST_SOURCE_DIR_DEFAULT}" CACHE PATH
  "Build GoogleTest/GoogleMock from this source tree instead of using installed ones (default: /usr/src/googletest when cross-compiling)")

if(NOT WEVLIN_GOOGLETEST_SOURCE_DIR)
  return()
endif()
if(NOT EXISTS "${WEVLIN_GOOGLETEST_SOURCE_DIR}/CMakeLists.txt")
  message(FATAL_ERROR "WEVLIN_GOOGLETEST_SOURCE_DIR (${WEVLIN_GOOGLETEST_SOURCE_DIR}) holds no CMakeLists.txt")
endif()

# Static, not installed, not part of `all`: the tests pull in what they link.
block(SCOPE_FOR VARIABLES)
  set(BUILD_SHARED_LIBS OFF)
  set(BUILD_GMOCK ON)
  set(INSTALL_GTEST OFF)
  add_subdirectory("${WEVLIN_GOOGLETEST_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/_deps/googletest"
    EXCLUDE_FROM_ALL SYSTEM)
endblock()

set(WEVLIN_GTEST_CONFIG_DIR "${PROJECT_BINARY_DIR}/_deps/googletest-config")
file(WRITE "${WEVLIN_GTEST_CONFIG_DIR}/GTestConfig.cmake"
  "# Written by wevlin's build: GoogleTest is built from source in this tree.\n")
set(GTest_DIR "${WEVLIN_GTEST_CONFIG_DIR}" CACHE PATH "GoogleTest built from source" FORCE)
