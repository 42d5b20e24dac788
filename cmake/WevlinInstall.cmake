# Install rules. Included by the top-level CMakeLists.txt after every library
# target is defined, when WEVLIN_INSTALL is on.
#
# Installed tree:
#   include/wevlin/...                  the public headers (no internal/ or
#                                       port/ folders) and wevlin_export.h
#   lib/ (bin/ for DLLs)                the library, versioned
#   lib/cmake/wevlin/                   find_package(wevlin CONFIG): target
#                                       wevlin::wevlin, component chromium
#                                       with target wevlin::chromium,
#                                       component webkitgtk with target
#                                       wevlin::webkitgtk, component testing
#                                       with target wevlin::testing
#   lib/pkgconfig/wevlin.pc             pkg-config (and wevlin-chromium.pc,
#                                       wevlin-webkitgtk.pc, wevlin-testing.pc)
#   share/wevlin/wevlin.js              the page-side library, as a classic
#                                       script that a hosted page loads
#   share/doc/wevlin/LICENSE            the licence (MIT)
#
# Install components: "wevlin" (the library), "chromium" and "webkitgtk" (the
# web controls, when they are built) and "testing" (the test kit, when it is
# built), e.g. cmake --install build --component wevlin. A web control or the
# test kit is of no use without the library it is built on, so installing the
# component "chromium", "webkitgtk" or "testing" alone installs "wevlin" with
# it.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(WEVLIN_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/wevlin" CACHE STRING
  "Where the CMake package files of wevlin are installed, relative to the prefix")
set(WEVLIN_INSTALL_PKGCONFIGDIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig" CACHE STRING
  "Where the pkg-config files of wevlin are installed, relative to the prefix")

# --- The library ------------------------------------------------------------
install(TARGETS wevlin
  EXPORT wevlinTargets
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT wevlin
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT wevlin
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT wevlin
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

# Public headers: everything below wevlin/ except the internal/ and port/
# folders (implementation only) and the web controls (their own components).
install(DIRECTORY "${PROJECT_SOURCE_DIR}/wevlin/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin"
  COMPONENT wevlin
  FILES_MATCHING PATTERN "*.h"
  PATTERN "internal" EXCLUDE
  PATTERN "port" EXCLUDE
  PATTERN "webcontrols" EXCLUDE
  PATTERN "testing" EXCLUDE)
install(FILES "${PROJECT_BINARY_DIR}/include/wevlin/wevlin_export.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin"
  COMPONENT wevlin)

# The page-side library, so that a host program can serve it beside its pages
# without a source tree; the CMake package and pkg-config name where it lies.
set(WEVLIN_INSTALL_PAGEDIR "${CMAKE_INSTALL_DATADIR}/wevlin" CACHE STRING
  "Where the page-side library wevlin.js is installed, relative to the prefix")
install(FILES "${PROJECT_SOURCE_DIR}/web/src/wevlin.js"
  DESTINATION "${WEVLIN_INSTALL_PAGEDIR}"
  COMPONENT wevlin)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE"
  DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  COMPONENT wevlin)

install(EXPORT wevlinTargets
  NAMESPACE wevlin::
  DESTINATION "${WEVLIN_INSTALL_CMAKEDIR}"
  COMPONENT wevlin)

if(MINGW AND WEVLIN_INSTALL_COMPILER_RUNTIME AND BUILD_SHARED_LIBS AND WEVLIN_COMPILER_RUNTIME_DLLS)
  install(FILES ${WEVLIN_COMPILER_RUNTIME_DLLS}
    DESTINATION "${CMAKE_INSTALL_BINDIR}"
    COMPONENT wevlin)
endif()

# wevlin_install_component_dependency(<component> <needed component>)
# Makes `cmake --install --component <component>` install <needed component>
# first, into the same prefix, configuration and DESTDIR. A full install (no
# component named) installs everything once, as before.
function(wevlin_install_component_dependency component needed)
  install(CODE "
    if(CMAKE_INSTALL_COMPONENT STREQUAL \"${component}\")
      set(_wevlin_install_args --install \"${PROJECT_BINARY_DIR}\"
        --prefix \"\${CMAKE_INSTALL_PREFIX}\" --component ${needed})
      if(CMAKE_INSTALL_CONFIG_NAME)
        list(APPEND _wevlin_install_args --config \"\${CMAKE_INSTALL_CONFIG_NAME}\")
      endif()
      if(CMAKE_INSTALL_DO_STRIP)
        list(APPEND _wevlin_install_args --strip)
      endif()
      message(STATUS \"Installing the component ${needed}, which ${component} needs\")
      execute_process(COMMAND \"${CMAKE_COMMAND}\" \${_wevlin_install_args}
        RESULT_VARIABLE _wevlin_install_result)
      if(NOT _wevlin_install_result EQUAL 0)
        message(FATAL_ERROR \"Installing the component ${needed} failed\")
      endif()
    endif()
    " COMPONENT ${component})
endfunction()

# --- The Chromium web control ---------------------------------------------------
set(WEVLIN_HAS_CHROMIUM OFF)
if(TARGET wevlin_chromium)
  set(WEVLIN_HAS_CHROMIUM ON)
  wevlin_install_component_dependency(chromium wevlin)
  set_target_properties(wevlin_chromium PROPERTIES EXPORT_NAME chromium)
  # The installed web control finds the installed wevlin beside itself, in
  # whatever prefix the two were installed.
  if(APPLE)
    set_target_properties(wevlin_chromium PROPERTIES INSTALL_RPATH "@loader_path")
  elseif(UNIX)
    set_target_properties(wevlin_chromium PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  install(TARGETS wevlin_chromium
    EXPORT wevlinChromiumTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT chromium
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT chromium
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT chromium)
  # The bridge's public headers, which every web control shares.
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/wevlin/webcontrols/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/webcontrols"
    COMPONENT chromium
    FILES_MATCHING PATTERN "*.h"
    PATTERN "internal" EXCLUDE
    PATTERN "chromium" EXCLUDE
    PATTERN "webkitgtk" EXCLUDE)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/wevlin/webcontrols/chromium/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/webcontrols/chromium"
    COMPONENT chromium
    FILES_MATCHING PATTERN "*.h"
    PATTERN "internal" EXCLUDE
    PATTERN "port" EXCLUDE)
  install(FILES "${PROJECT_BINARY_DIR}/include/wevlin/webcontrols/chromium/wevlin_chromium_export.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/webcontrols/chromium"
    COMPONENT chromium)
  install(EXPORT wevlinChromiumTargets
    NAMESPACE wevlin::
    DESTINATION "${WEVLIN_INSTALL_CMAKEDIR}"
    COMPONENT chromium)
endif()

# --- The WebKitGTK web control ---------------------------------------------------
set(WEVLIN_HAS_WEBKITGTK OFF)
if(TARGET wevlin_webkitgtk)
  set(WEVLIN_HAS_WEBKITGTK ON)
  wevlin_install_component_dependency(webkitgtk wevlin)
  set_target_properties(wevlin_webkitgtk PROPERTIES EXPORT_NAME webkitgtk)
  # The installed web control finds the installed wevlin beside itself, in
  # whatever prefix the two were installed.
  if(APPLE)
    set_target_properties(wevlin_webkitgtk PROPERTIES INSTALL_RPATH "@loader_path")
  elseif(UNIX)
    set_target_properties(wevlin_webkitgtk PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  install(TARGETS wevlin_webkitgtk
    EXPORT wevlinWebKitGtkTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT webkitgtk
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT webkitgtk
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT webkitgtk)
  # The bridge's public headers, which every web control shares.
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/wevlin/webcontrols/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/webcontrols"
    COMPONENT webkitgtk
    FILES_MATCHING PATTERN "*.h"
    PATTERN "internal" EXCLUDE
    PATTERN "chromium" EXCLUDE
    PATTERN "webkitgtk" EXCLUDE)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/wevlin/webcontrols/webkitgtk/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/webcontrols/webkitgtk"
    COMPONENT webkitgtk
    FILES_MATCHING PATTERN "*.h"
    PATTERN "internal" EXCLUDE
    PATTERN "port" EXCLUDE)
  install(FILES
    "${PROJECT_BINARY_DIR}/include/wevlin/webcontrols/webkitgtk/wevlin_webkitgtk_export.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/webcontrols/webkitgtk"
    COMPONENT webkitgtk)
  # The exported target names WebKitGTK as PkgConfig::WEBKITGTK, which
  # wevlinConfig.cmake defines again with pkg-config for the consumer.
  install(EXPORT wevlinWebKitGtkTargets
    NAMESPACE wevlin::
    DESTINATION "${WEVLIN_INSTALL_CMAKEDIR}"
    COMPONENT webkitgtk)
endif()

# --- The test kit -------------------------------------------------------------------
# wevlin::testing (ScriptedPage), for the applications' own tests; like a web
# control it needs the library, which installing it alone brings along.
set(WEVLIN_HAS_TESTING OFF)
if(TARGET wevlin_testing AND WEVLIN_BUILD_TESTING_KIT)
  set(WEVLIN_HAS_TESTING ON)
  wevlin_install_component_dependency(testing wevlin)
  set_target_properties(wevlin_testing PROPERTIES EXPORT_NAME testing)
  if(APPLE)
    set_target_properties(wevlin_testing PROPERTIES INSTALL_RPATH "@loader_path")
  elseif(UNIX)
    set_target_properties(wevlin_testing PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  install(TARGETS wevlin_testing
    EXPORT wevlinTestingTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT testing
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT testing
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT testing)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/wevlin/testing/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/testing"
    COMPONENT testing
    FILES_MATCHING PATTERN "*.h"
    PATTERN "internal" EXCLUDE
    PATTERN "port" EXCLUDE)
  install(FILES "${PROJECT_BINARY_DIR}/include/wevlin/testing/wevlin_testing_export.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/wevlin/testing"
    COMPONENT testing)
  install(EXPORT wevlinTestingTargets
    NAMESPACE wevlin::
    DESTINATION "${WEVLIN_INSTALL_CMAKEDIR}"
    COMPONENT testing)
endif()

# --- CMake package ----------------------------------------------------------------
set(WEVLIN_CONFIG_SHARED "${BUILD_SHARED_LIBS}")
set(WEVLIN_PAGE_SCRIPT "${WEVLIN_INSTALL_PAGEDIR}/wevlin.js")
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/wevlinConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/package/wevlinConfig.cmake"
  INSTALL_DESTINATION "${WEVLIN_INSTALL_CMAKEDIR}"
  PATH_VARS WEVLIN_PAGE_SCRIPT)
# 0.x releases promise nothing across minor versions; from 1.0 on, a major
# version keeps its interface.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(WEVLIN_VERSION_COMPATIBILITY SameMinorVersion)
else()
  set(WEVLIN_VERSION_COMPATIBILITY SameMajorVersion)
endif()
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/package/wevlinConfigVersion.cmake"
  VERSION "${PROJECT_VERSION}"
  COMPATIBILITY ${WEVLIN_VERSION_COMPATIBILITY})
install(FILES
  "${PROJECT_BINARY_DIR}/package/wevlinConfig.cmake"
  "${PROJECT_BINARY_DIR}/package/wevlinConfigVersion.cmake"
  DESTINATION "${WEVLIN_INSTALL_CMAKEDIR}"
  COMPONENT wevlin)

# --- pkg-config -------------------------------------------------------------------
# The prefix is written when installing, so that `cmake --install --prefix`
# yields a file that names the tree it is in. Everything else is known now.
function(wevlin_install_pkgconfig template name component)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(WEVLIN_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
  else()
    set(WEVLIN_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  endif()
  if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(WEVLIN_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
  else()
    set(WEVLIN_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
  endif()
  if(IS_ABSOLUTE "${WEVLIN_INSTALL_PAGEDIR}")
    set(WEVLIN_PC_PAGEDIR "${WEVLIN_INSTALL_PAGEDIR}")
  else()
    set(WEVLIN_PC_PAGEDIR "\${prefix}/${WEVLIN_INSTALL_PAGEDIR}")
  endif()
  set(WEVLIN_PC_CFLAGS "")
  set(WEVLIN_PC_LIBS_PRIVATE "")
  if(NOT BUILD_SHARED_LIBS)
    set(WEVLIN_PC_CFLAGS " -DWEVLIN_STATIC_DEFINE")
    if(name STREQUAL "wevlin-chromium")
      string(APPEND WEVLIN_PC_CFLAGS " -DWEVLIN_CHROMIUM_STATIC_DEFINE")
    endif()
    if(name STREQUAL "wevlin-webkitgtk")
      string(APPEND WEVLIN_PC_CFLAGS " -DWEVLIN_WEBKITGTK_STATIC_DEFINE")
    endif()
    if(name STREQUAL "wevlin-testing")
      string(APPEND WEVLIN_PC_CFLAGS " -DWEVLIN_TESTING_STATIC_DEFINE")
    endif()
  endif()
  find_package(Threads REQUIRED)
  if(CMAKE_USE_PTHREADS_INIT)
    set(WEVLIN_PC_LIBS_PRIVATE "-pthread")
  endif()
  set(destination "${WEVLIN_INSTALL_PKGCONFIGDIR}")
  if(NOT IS_ABSOLUTE "${destination}")
    set(destination "\${CMAKE_INSTALL_PREFIX}/${destination}")
  endif()
  # Left for the install step.
  set(WEVLIN_PC_PREFIX "@WEVLIN_PC_PREFIX@")
  set(stage "${PROJECT_BINARY_DIR}/package/${name}.pc.in")
  configure_file("${template}" "${stage}" @ONLY)
  install(CODE "
    set(WEVLIN_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
    configure_file(\"${stage}\" \"${PROJECT_BINARY_DIR}/package/install/${name}.pc\" @ONLY)
    file(INSTALL DESTINATION \"${destination}\"
      TYPE FILE FILES \"${PROJECT_BINARY_DIR}/package/install/${name}.pc\")
    " COMPONENT ${component})
endfunction()

wevlin_install_pkgconfig("${PROJECT_SOURCE_DIR}/cmake/wevlin.pc.in" wevlin wevlin)
if(WEVLIN_HAS_CHROMIUM)
  wevlin_install_pkgconfig("${PROJECT_SOURCE_DIR}/cmake/wevlin-chromium.pc.in" wevlin-chromium chromium)
endif()
if(WEVLIN_HAS_WEBKITGTK)
  wevlin_install_pkgconfig("${PROJECT_SOURCE_DIR}/cmake/wevlin-webkitgtk.pc.in" wevlin-webkitgtk
    webkitgtk)
endif()
if(WEVLIN_HAS_TESTING)
  wevlin_install_pkgconfig("${PROJECT_SOURCE_DIR}/cmake/wevlin-testing.pc.in" wevlin-testing testing)
endif()
