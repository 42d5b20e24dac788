#ifndef WEVLIN_TESTS_SUPPORT_STDOUTCAPTURE_H_
#define WEVLIN_TESTS_SUPPORT_STDOUTCAPTURE_H_

#include <cstdio>
#include <string>

namespace wevlin_test {

// Captures everything written to the process's standard output while it
// lives, at the file-descriptor level, so that a line written through
// std::cout, printf or a raw write(1, ...) is seen alike.
//
// Construct it, run the code under test, then call Text(). The destructor
// restores the original standard output; when the running test has failed by
// then, it also writes the captured text to standard error, since GoogleTest's
// own failure messages went into the capture. Captures do not nest. Only one
// thread should create captures; any thread may write while one is active.
class StdoutCapture {
 public:
  StdoutCapture();
  ~StdoutCapture();
  StdoutCapture(const StdoutCapture&) = delete;
  StdoutCapture& operator=(const StdoutCapture&) = delete;

  // Returns everything captured so far (flushing the C and C++ streams first).
  std::string Text();

 private:
  std::FILE* file_;
  int savedFd_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_STDOUTCAPTURE_H_
