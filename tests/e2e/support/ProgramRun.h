#ifndef WEVLIN_TESTS_E2E_SUPPORT_PROGRAMRUN_H_
#define WEVLIN_TESTS_E2E_SUPPORT_PROGRAMRUN_H_

#include <chrono>
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

  // Runs `program` as Start does, but with its standard output on a
  // pseudo-terminal whose other end this reads (standardOutput, with the
  // terminal's "\r\n" line ends turned back into "\n"). Kills the program
  // and adds a test failure when it has not ended after `limit`. Throws
  // std::runtime_error when there is no terminal or the program cannot be
  // started. Any thread.
  static ProgramRun StartOnTerminal(const std::string& program,
                                    const std::vector<std::string>& arguments,
                                    const std::vector<std::string>& environment,
                                    std::chrono::seconds limit);
};

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_PROGRAMRUN_H_
