#ifndef WEVLIN_TESTS_SUPPORT_ASSERTIONMESSAGE_H_
#define WEVLIN_TESTS_SUPPORT_ASSERTIONMESSAGE_H_

#include <string>

#include <gmock/gmock.h>

// A matcher for the message that a failed assert() leaves on standard error,
// for death tests. The C runtimes disagree on its layout: glibc writes
// "file:line: function: Assertion `expr' failed." while the Windows runtime
// writes "Assertion failed: expr, file path, line N". Both name the source
// file and quote the expression, so the matcher asks for those two texts in
// any order. Header-only; usable from any thread.
namespace wevlin_test {

// Returns a matcher of an assertion message that names `source_file` (a file
// name such as "TestVersionSvc.cpp", matched as a substring of the path) and
// quotes `expression` exactly as written in the source.
inline ::testing::Matcher<const std::string&> AssertionMessage(const std::string& source_file,
                                                               const std::string& expression) {
  return ::testing::AllOf(::testing::HasSubstr(source_file), ::testing::HasSubstr(expression));
}

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_ASSERTIONMESSAGE_H_
