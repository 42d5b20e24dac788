#ifndef WEVLIN_TESTS_E2E_SUPPORT_PROCESSSCAN_H_
#define WEVLIN_TESTS_E2E_SUPPORT_PROCESSSCAN_H_

#include <cstdint>
#include <string>
#include <vector>

namespace wevlin_e2e {

// Looks through the system's process table (/proc) for what a browser left
// behind. Only processes that still run count: a zombie has ended and merely
// waits for its parent to collect it. Any thread.
class ProcessScan {
 public:
  ProcessScan() = delete;

  // Returns the ids of running processes that are in the process group
  // `group` or whose command line contains `text` (when not empty), in
  // ascending order.
  static std::vector<long> Running(std::int64_t group, const std::string& text);

  // Returns true when the process `pid` exists and has not ended.
  static bool IsRunning(std::int64_t pid);
};

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_PROCESSSCAN_H_
