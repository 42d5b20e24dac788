# Compiler settings shared by every target of the project: warnings, and the
# optional sanitizer build. Applied through an interface target so that
# consumers of the installed library never inherit them.
add_library(wevlin_build_options INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  target_compile_options(wevlin_build_options INTERFACE -Wall -Wextra -Wpedantic)
  if(WEVLIN_WARNINGS_AS_ERRORS)
    target_compile_options(wevlin_build_options INTERFACE -Werror)
  endif()
  if(WEVLIN_SANITIZE)
    target_compile_options(wevlin_build_options INTERFACE
      -fsanitize=${WEVLIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(wevlin_build_options INTERFACE -fsanitize=${WEVLIN_SANITIZE})
  endif()
elseif(MSVC)
  target_compile_options(wevlin_build_options INTERFACE /W4 /permissive-)
  if(WEVLIN_WARNINGS_AS_ERRORS)
    target_compile_options(wevlin_build_options INTERFACE /WX)
  endif()
endif()
