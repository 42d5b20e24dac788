# Windows build layout. Included by the top-level CMakeLists.txt before any
# target is defined; does nothing on other systems.
#
# Windows finds a program's DLLs beside the program, so every program and DLL
# of the build goes to one folder, <build>/bin. With MinGW-w64 the compiler's
# own runtime DLLs (libstdc++, libgcc, winpthreads) are copied there as well,
# so that the tests and examples start on Windows or under Wine without any
# PATH set-up, and they are installed beside wevlin's DLL unless
# WEVLIN_INSTALL_COMPILER_RUNTIME is turned off.
if(NOT WIN32)
  return()
endif()

if(WEVLIN_TOP_LEVEL AND NOT CMAKE_RUNTIME_OUTPUT_DIRECTORY)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endif()

if(NOT MINGW)
  return()
endif()

option(WEVLIN_INSTALL_COMPILER_RUNTIME "Install the MinGW-w64 runtime DLLs beside wevlin's DLL" ON)

# Asks the compiler where each runtime DLL lives; a compiler that links its
# runtime statically has none, and then nothing is copied.
set(WEVLIN_COMPILER_RUNTIME_DLLS "")
foreach(dll IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(
    COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${dll}"
    OUTPUT_VARIABLE path
    OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE result)
  # -print-file-name echoes the bare name when it finds nothing.
  if(result EQUAL 0 AND IS_ABSOLUTE "${path}" AND EXISTS "${path}")
    get_filename_component(path "${path}" REALPATH)
    list(APPEND WEVLIN_COMPILER_RUNTIME_DLLS "${path}")
  endif()
endforeach()

if(CMAKE_RUNTIME_OUTPUT_DIRECTORY AND WEVLIN_COMPILER_RUNTIME_DLLS)
  file(COPY ${WEVLIN_COMPILER_RUNTIME_DLLS} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endif()
