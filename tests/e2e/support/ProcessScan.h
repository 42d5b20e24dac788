#ifndef WEVLIN_TESTS_E2E_SUPPORT_PROCESSSCAN_H_
#define WEVLIN_TESTS_E2E_SUPPORT_PROCESSSCAN_H_

#include <cstdint>
#include <string>
#include <vector>

namespace wevlin_e2e {

// Looks through the system's process table (/proc) for what a browser left
// behind. Running and IsRunning count only processes that still run (a zombie
// has ended and merely waits for its parent to collect it); Exists counts
// zombies too, so that a child that was never reaped is seen. Any thread.
class ProcessScan {
 public:
  ProcessScan() = delete;

  // Returns the ids of running processes that are in the process group
  // `group` or whose command line contains `text` (when not empty), in
  // ascending order.
  static std::vector<long> Running(std::int64_t group, const std::string& text);

  // Returns true when the process `pid` exists and has not ended.
  static bool IsRunning(std::int64_t pid);

  // Returns true when the process `pid` is in the process table at all,
  // zombie or not: a process that has ended stays there until its parent
  // reaps it.
  static bool Exists(std::int64_t pid);

  // Returns the arguments the process `pid` was started with, program
  // first, as /proc/<pid>/cmdline lists them (each ended by a NUL byte);
  // empty when the process is gone.
  static std::vector<std::string> Arguments(std::int64_t pid);
};

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_PROCESSSCAN_H_
