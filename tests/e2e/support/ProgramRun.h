#ifndef WEVLIN_TESTS_E2E_SUPPORT_PROGRAMRUN_H_
#define WEVLIN_TESTS_E2E_SUPPORT_PROGRAMRUN_H_

#include <string>
#include <vector>

namespace wevlin_e2e {

// One finished run of a program: how it ended and what it wrote.
struct ProgramRun {
  // The exit status, or 128 plus the signal's number when a signal ended it.
  int exitStatus = -1;
  std::string standardOutput;
  std::string standardError;

  // Runs `program` with `arguments`, its standard input empty and its two
  // output streams captured, and waits for it to end. `environment` adds
  // NAME=VALUE entries to the test's own environment (replacing a variable of
  // the same name). Throws std::runtime_error when the program cannot be
  // started. Any thread.
  static ProgramRun Start(const std::string& program, const std::vector<std::string>& arguments,
                          const std::vector<std::string>& environment = {});
};

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_PROGRAMRUN_H_
