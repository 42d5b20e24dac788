// The process checks that every end-to-end test ends with: they must see a
// browser that ended but was never reaped.

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "support/BrowserFixture.h"
#include "support/ProcessScan.h"

namespace {

using wevlin_e2e::ExpectNothingLeft;
using wevlin_e2e::ProcessScan;
using namespace std::chrono_literals;

// Starts a child that ends at once and waits until it has ended, without
// reaping it; returns its id.
pid_t EndedChild() {
  const pid_t pid = ::fork();
  if (pid == 0) ::_exit(0);
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  while (ProcessScan::IsRunning(pid) && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(5ms);
  }
  return pid;
}

TEST(ProcessScanTest, ChildThatEndedExistsUntilItIsReaped) {
  const pid_t pid = EndedChild();
  ASSERT_GT(pid, 0);
  EXPECT_FALSE(ProcessScan::IsRunning(pid));
  EXPECT_TRUE(ProcessScan::Exists(pid));
  int status = 0;
  ASSERT_EQ(::waitpid(pid, &status, 0), pid);
  EXPECT_FALSE(ProcessScan::Exists(pid));
  EXPECT_FALSE(ProcessScan::IsRunning(pid));
}

TEST(ProcessScanTest, NothingLeftFailsForABrowserThatWasNotReaped) {
  const pid_t pid = EndedChild();
  ASSERT_GT(pid, 0);
  const std::string profile = "/nonexistent/wevlin-chromium-profile";
  EXPECT_NONFATAL_FAILURE(ExpectNothingLeft(pid, profile),
                          "browser process " + std::to_string(pid) + " was not reaped");
  int status = 0;
  ASSERT_EQ(::waitpid(pid, &status, 0), pid);
  ExpectNothingLeft(pid, profile);
}

TEST(ProcessScanTest, ArgumentsAreListedOneByOne) {
  const std::vector<std::string> arguments = ProcessScan::Arguments(::getpid());
  ASSERT_FALSE(arguments.empty());
  const std::string program = arguments[0];
  const std::string name = "t_e2e_ProcessScanTest";
  ASSERT_GE(program.size(), name.size());
  EXPECT_EQ(program.substr(program.size() - name.size()), name);
  EXPECT_TRUE(ProcessScan::Arguments(-1).empty());
}

}  // namespace
