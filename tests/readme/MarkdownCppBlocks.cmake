# wevlin_write_markdown_cpp_blocks(<markdown> <output-dir> <core-var> <chromium-var>)
#
# Writes every C++ block of the Markdown file <markdown> (a block opened by a
# line that is exactly ```cpp and closed by a line that is exactly ```) into
# a translation unit of its own in <output-dir>, named after the Markdown
# file and the block's number, and appends its path to <chromium-var> when
# the block includes a header of the headless-Chromium web control
# (wevlin/webcontrols/chromium/), else to <core-var>.
#
# Each unit starts with a #line directive that names the Markdown file and
# the block's first line, so that the compiler reports errors at their place
# in the Markdown. A unit is rewritten only when its text changes, so that an
# unchanged block is not compiled again. A block that is never closed becomes
# a unit with an #error naming its line. Units of blocks that no longer exist
# are removed.
#
# The Markdown is handled as one string: C++ is full of semicolons and
# brackets, which CMake's lists would split.
function(wevlin_write_markdown_cpp_blocks markdown output_dir core_var chromium_var)
  file(READ "${markdown}" text)
  file(RELATIVE_PATH relative "${PROJECT_SOURCE_DIR}" "${markdown}")
  string(REGEX REPLACE "[^A-Za-z0-9]+" "_" stem "${relative}")
  file(MAKE_DIRECTORY "${output_dir}")

  set(core ${${core_var}})
  set(chromium ${${chromium_var}})
  set(written "")
  set(open_fence "\n```cpp\n")
  string(LENGTH "${open_fence}" open_length)
  # `rest` is the text not yet searched, starting with the line feed that
  # ends the line before it; `line` is the number of that line.
  set(rest "\n${text}")
  set(line 0)
  set(number 0)
  while(TRUE)
    string(FIND "${rest}" "${open_fence}" open)
    if(open EQUAL -1)
      break()
    endif()
    math(EXPR number "${number} + 1")
    math(EXPR body_at "${open} + ${open_length}")
    string(SUBSTRING "${rest}" 0 ${body_at} before)
    string(REGEX REPLACE "[^\n]" "" breaks "${before}")
    string(LENGTH "${breaks}" break_count)
    # The block's first line comes after the opening fence's line.
    math(EXPR first_line "${line} + ${break_count}")
    string(SUBSTRING "${rest}" ${body_at} -1 after)

    # The closing fence: a line that is exactly ```. Searching "\n<after>\n"
    # finds it on the block's first line and on the file's last line too.
    string(FIND "\n${after}\n" "\n```\n" close)
    set(file "${output_dir}/${stem}_block${number}.cpp")
    if(close EQUAL -1)
      set(unit "#error \"${relative}:${first_line}: this cpp block is never closed\"\n")
      set(rest "")
    else()
      if(close EQUAL 0)
        set(body "")
      else()
        math(EXPR body_length "${close} - 1")
        string(SUBSTRING "${after}" 0 ${body_length} body)
        set(body "${body}\n")
      endif()
      string(REGEX REPLACE "[^\n]" "" breaks "${body}")
      string(LENGTH "${breaks}" body_lines)
      math(EXPR last_line "${first_line} + ${body_lines} - 1")
      set(lines "lines ${first_line}-${last_line}")
      if(body_lines EQUAL 0)
        set(lines "empty, line ${first_line}")
      endif()
      string(CONCAT unit
        "// Block ${number} of ${relative} (${lines}), written by\n"
        "// the build (tests/readme). Edit the Markdown file, not this one.\n"
        "#line ${first_line} \"${markdown}\"\n" "${body}")
      # Go on after the closing fence's line, from the line feed ending it.
      math(EXPR skip "${close} + 3")
      string(SUBSTRING "${after}\n" ${skip} -1 rest)
      math(EXPR line "${first_line} + ${body_lines}")
    endif()

    set(old "")
    if(EXISTS "${file}")
      file(READ "${file}" old)
    endif()
    if(NOT old STREQUAL unit)
      file(WRITE "${file}" "${unit}")
    endif()
    list(APPEND written "${file}")
    string(FIND "${unit}" "wevlin/webcontrols/chromium/" needs_chromium)
    if(needs_chromium EQUAL -1)
      list(APPEND core "${file}")
    else()
      list(APPEND chromium "${file}")
    endif()
  endwhile()

  file(GLOB stale "${output_dir}/${stem}_block*.cpp")
  foreach(old_file IN LISTS stale)
    if(NOT old_file IN_LIST written)
      file(REMOVE "${old_file}")
    endif()
  endforeach()

  set(${core_var} ${core} PARENT_SCOPE)
  set(${chromium_var} ${chromium} PARENT_SCOPE)
endfunction()
