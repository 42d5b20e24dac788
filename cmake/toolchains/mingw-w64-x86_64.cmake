# Cross-builds for 64-bit Windows with Debian's MinGW-w64 GCC, the variant with
# POSIX threads (g++-mingw-w64-x86-64-posix), whose libstdc++ has std::thread
# and std::mutex.
#
#   cmake -S . -B build/windows -G Ninja \
#     -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/mingw-w64-x86_64.cmake
#
# or the "windows-mingw" preset. When Wine is installed, it becomes the
# emulator through which CMake and CTest run the built programs (test
# discovery and `ctest`), so the unit tests run on this machine.
#
# Cache variables:
#   WEVLIN_MINGW_TRIPLET  the tool prefix (default x86_64-w64-mingw32)
#   WEVLIN_WINE           the Wine loader used as the emulator (found on its
#                         own; set it empty to build without running anything)

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(WEVLIN_MINGW_TRIPLET "x86_64-w64-mingw32" CACHE STRING "Tool prefix of the MinGW-w64 cross toolchain")

# The -posix names select the thread model explicitly, whatever the
# alternatives system points the unsuffixed names at.
find_program(WEVLIN_MINGW_CXX NAMES "${WEVLIN_MINGW_TRIPLET}-g++-posix" REQUIRED)
find_program(WEVLIN_MINGW_CC NAMES "${WEVLIN_MINGW_TRIPLET}-gcc-posix" REQUIRED)
find_program(WEVLIN_MINGW_WINDRES NAMES "${WEVLIN_MINGW_TRIPLET}-windres")

set(CMAKE_CXX_COMPILER "${WEVLIN_MINGW_CXX}")
set(CMAKE_C_COMPILER "${WEVLIN_MINGW_CC}")
if(WEVLIN_MINGW_WINDRES)
  set(CMAKE_RC_COMPILER "${WEVLIN_MINGW_WINDRES}")
endif()

# Libraries, headers and packages come from the target's root only, so that
# nothing built for the build machine (such as its GoogleTest) is picked up.
# The prefixes named in CMAKE_PREFIX_PATH (such as an installed cross-built
# wevlin) hold Windows files too: they become roots as well, so that
# find_package looks into them where they are.
set(CMAKE_FIND_ROOT_PATH "/usr/${WEVLIN_MINGW_TRIPLET}")
foreach(wevlin_prefix IN LISTS CMAKE_PREFIX_PATH)
  if(IS_ABSOLUTE "${wevlin_prefix}")
    list(APPEND CMAKE_FIND_ROOT_PATH "${wevlin_prefix}")
  endif()
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Debian installs the 64-bit loader beside the 32-bit one, outside PATH.
find_program(WEVLIN_WINE NAMES wine64 wine PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(WEVLIN_WINE AND NOT DEFINED CMAKE_CROSSCOMPILING_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${WEVLIN_WINE}")
endif()
