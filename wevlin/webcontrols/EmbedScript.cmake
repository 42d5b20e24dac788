# Turns a script file into a C++ source that defines it as a character array,
# so that the control carries the script without a copy escaped by hand.
#
#   cmake -DINPUT=<file.js> -DOUTPUT=<file.cpp> -DNAMESPACE=<a::b> -DFUNCTION=<Name> -P EmbedScript.cmake
#
# The generated file defines `std::string_view NAMESPACE::FUNCTION()`, which
# returns the file's bytes exactly (no terminating NUL counted).
foreach(var INPUT OUTPUT NAMESPACE FUNCTION)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "EmbedScript.cmake needs -D${var}=...")
  endif()
endforeach()

file(READ "${INPUT}" bytes HEX)
string(LENGTH "${bytes}" hex_length)
math(EXPR size "${hex_length} / 2")
# Sixteen bytes per line: "0x2f, 0x2f, ...".
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1, " bytes "${bytes}")
string(REGEX REPLACE "((0x[0-9a-f][0-9a-f], ){16})" "\\1\n    " bytes "${bytes}")
string(REGEX REPLACE " +\n" "\n" bytes "${bytes}")
get_filename_component(input_name "${INPUT}" NAME)

set(content "// Generated from ${input_name} by EmbedScript.cmake; do not edit.
#include <cstddef>
#include <string_view>

namespace ${NAMESPACE} {

namespace {
const unsigned char kBytes[] = {
    ${bytes}0x00};
constexpr std::size_t kSize = ${size};
}  // namespace

std::string_view ${FUNCTION}() {
  return std::string_view(reinterpret_cast<const char*>(kBytes), kSize);
}

}  // namespace ${NAMESPACE}
")

# Rewrite only on change, so that an unchanged script does not rebuild.
if(EXISTS "${OUTPUT}")
  file(READ "${OUTPUT}" previous)
  if(previous STREQUAL content)
    return()
  endif()
endif()
file(WRITE "${OUTPUT}" "${content}")
