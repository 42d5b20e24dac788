# Proves that an umbrella header reaches every header that the install step
# writes for its component, and that a translation unit including only that
# umbrella can name every exported class of the component.
#
#   cmake -DBUILD_DIR=<configured and built tree> -DCXX=<C++ compiler>
#         -DWORK=<scratch folder> -DCOMPONENT=<install component>
#         -DUMBRELLA=<header, relative to include/> -DSUBTREE=<folder below
#         include/ that holds the component's headers>
#         [-DEXCLUDE=<folders below SUBTREE that belong to other components>]
#         [-DDEPENDS=<components to install first>]
#         [-DSYSTEM_INCLUDES=<folders of headers the component needs from other
#         packages, e.g. GTK's, "|" between them>] -P CheckUmbrella.cmake
#
# The component is installed into WORK/prefix with `cmake --install`, so what
# is compared is what an application really gets. The umbrella is then run
# through the preprocessor against that prefix alone (-M): an installed
# header that includes a header the install step left out fails here as
# well. Exported classes are found in the installed headers by their export
# macro (WEVLIN_EXPORT, WEVLIN_CHROMIUM_EXPORT, ...) at the start of a line,
# inside the namespaces open there.
cmake_minimum_required(VERSION 3.25)

foreach(required BUILD_DIR CXX WORK COMPONENT UMBRELLA SUBTREE)
  if(NOT DEFINED ${required})
    message(FATAL_ERROR "CheckUmbrella.cmake needs -D${required}=...")
  endif()
endforeach()

set(prefix "${WORK}/prefix")
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")
foreach(component IN LISTS DEPENDS COMPONENT)
  execute_process(
    COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}"
      --component "${component}"
    OUTPUT_VARIABLE install_output ERROR_VARIABLE install_output
    RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "cmake --install --component ${component} failed:\n${install_output}")
  endif()
endforeach()

set(include_dir "${prefix}/include")
file(REAL_PATH "${include_dir}" include_dir)

# What the install step wrote for this component.
file(GLOB_RECURSE installed RELATIVE "${include_dir}" "${include_dir}/${SUBTREE}/*.h")
foreach(excluded IN LISTS EXCLUDE)
  list(FILTER installed EXCLUDE REGEX "^${SUBTREE}/${excluded}/")
endforeach()
list(SORT installed)
list(LENGTH installed installed_count)
if(installed_count EQUAL 0)
  message(FATAL_ERROR "The component ${COMPONENT} installed no header below include/${SUBTREE}")
endif()
if(NOT "${UMBRELLA}" IN_LIST installed)
  message(FATAL_ERROR "The component ${COMPONENT} did not install ${UMBRELLA}")
endif()

# Headers of other packages that the component's headers include come from
# their own folders, never from this project's.
set(system_flags "")
string(REPLACE "|" ";" SYSTEM_INCLUDES "${SYSTEM_INCLUDES}")
foreach(folder IN LISTS SYSTEM_INCLUDES)
  list(APPEND system_flags "-isystem${folder}")
endforeach()

# What the umbrella reaches.
set(unit "${WORK}/umbrella.cpp")
file(WRITE "${unit}" "#include \"${UMBRELLA}\"\n")
execute_process(
  COMMAND "${CXX}" -std=c++17 "-I${include_dir}" ${system_flags} -M -MF "${WORK}/umbrella.d"
    "${unit}"
  OUTPUT_VARIABLE preprocess_output ERROR_VARIABLE preprocess_output
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR
    "${UMBRELLA} does not preprocess against the installed headers alone:\n${preprocess_output}")
endif()
file(READ "${WORK}/umbrella.d" dependencies)
string(REPLACE "\\\n" " " dependencies "${dependencies}")
string(REGEX REPLACE "[ \t\r\n]+" ";" dependencies "${dependencies}")
set(reached "")
foreach(dependency IN LISTS dependencies)
  if(dependency MATCHES "\\.h$")
    file(REAL_PATH "${dependency}" dependency)
    string(FIND "${dependency}" "${include_dir}/" at)
    if(at EQUAL 0)
      file(RELATIVE_PATH relative "${include_dir}" "${dependency}")
      list(APPEND reached "${relative}")
    endif()
  endif()
endforeach()
list(REMOVE_DUPLICATES reached)

set(unreached "")
foreach(header IN LISTS installed)
  if(NOT header IN_LIST reached)
    list(APPEND unreached "${header}")
  endif()
endforeach()
if(unreached)
  list(JOIN unreached "\n  " unreached_text)
  message(FATAL_ERROR
    "${UMBRELLA} does not reach these headers that the component ${COMPONENT} installs; "
    "include them in it:\n  ${unreached_text}")
endif()

# Every exported class, named from a translation unit that includes only the
# umbrella.
set(names "")
foreach(header IN LISTS installed)
  file(STRINGS "${include_dir}/${header}" lines)
  # The namespaces open at each line, outermost first; the headers close each
  # one with a "}  // namespace ..." line of its own.
  set(open_namespaces "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^namespace ([A-Za-z0-9_:]+) {")
      list(APPEND open_namespaces "${CMAKE_MATCH_1}")
    elseif(line MATCHES "^}  // namespace")
      list(POP_BACK open_namespaces)
    elseif(line MATCHES "^(class|struct) WEVLIN_[A-Z_]*EXPORT ([A-Za-z0-9_]+)")
      list(JOIN open_namespaces "::" namespace)
      if(namespace STREQUAL "")
        list(APPEND names "::${CMAKE_MATCH_2}")
      else()
        list(APPEND names "::${namespace}::${CMAKE_MATCH_2}")
      endif()
    endif()
  endforeach()
endforeach()
list(LENGTH names name_count)
if(name_count EQUAL 0)
  message(FATAL_ERROR "No exported class found in the headers of the component ${COMPONENT}")
endif()
set(source "#include \"${UMBRELLA}\"\n\n#include <type_traits>\n\n")
foreach(name IN LISTS names)
  string(APPEND source
    "static_assert(std::is_class_v<${name}>, \"${name} is reachable\");\n"
    "static_assert(sizeof(${name}) > 0, \"${name} is complete\");\n")
endforeach()
file(WRITE "${WORK}/exported.cpp" "${source}")
execute_process(
  COMMAND "${CXX}" -std=c++17 "-I${include_dir}" ${system_flags} -fsyntax-only
    "${WORK}/exported.cpp"
  OUTPUT_VARIABLE compile_output ERROR_VARIABLE compile_output
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR
    "A translation unit that includes only ${UMBRELLA} cannot name every exported class:\n"
    "${compile_output}")
endif()

message(STATUS
  "${UMBRELLA} reaches all ${installed_count} installed headers of the component "
  "${COMPONENT} and names its ${name_count} exported classes")
