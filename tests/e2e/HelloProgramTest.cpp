// The hello example (examples/hello), run as a newcomer runs it: its exit
// status, the lines it prints for what crossed between host and page, and
// what it leaves behind (no browser process, no browser profile).

#include <stdlib.h>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support/ProcessScan.h"
#include "support/ProgramRun.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using wevlin_e2e::ProcessScan;
using wevlin_e2e::ProgramRun;

const std::string kHello = WEVLIN_HELLO_PROGRAM;

class HelloProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // The browser makes its sockets below the temporary directory, whose
    // path must stay short (a socket path has at most 107 bytes).
    std::string pattern = (std::filesystem::temp_directory_path() / "wevlin-hello-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr) << std::strerror(errno);
    temporary_ = pattern;
  }

  void TearDown() override {
    if (!temporary_.empty()) std::filesystem::remove_all(temporary_);
  }

  // Runs the example with its own temporary directory, where the browser
  // control makes the browser's profile, and `environment` added.
  ProgramRun RunHello(std::vector<std::string> environment = {}) {
    environment.push_back("TMPDIR=" + temporary_.string());
    return ProgramRun::Start(kHello, {}, environment);
  }

  // Checks that no process mentions a browser profile in the example's
  // temporary directory and that the directory is empty. A process killed at
  // the very end may take a moment to go, so the scan is repeated for up to
  // five seconds.
  void ExpectNothingLeftBehind() {
    const std::string profiles = (temporary_ / "wevlin-chromium-").string();
    std::vector<long> left = ProcessScan::Running(-1, profiles);
    for (int i = 0; i < 50 && !left.empty(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      left = ProcessScan::Running(-1, profiles);
    }
    EXPECT_THAT(left, IsEmpty()) << "processes of a browser profile " << profiles << "* still run";
    std::vector<std::string> entries;
    for (const auto& entry : std::filesystem::directory_iterator(temporary_)) {
      entries.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(entries, IsEmpty()) << "left in the temporary directory " << temporary_;
  }

  std::filesystem::path temporary_;
};

TEST_F(HelloProgramTest, PrintsWhatCrossedAndExitsWithZero) {
  const ProgramRun run = RunHello();
  ASSERT_EQ(run.exitStatus, 0) << run.standardOutput << run.standardError;
  // As root the browser cannot have its sandbox, and the control says so.
  const std::string unsandboxed =
      ::geteuid() == 0
          ? "ChromiumWebControl: the page runs without the browser's sandbox (running as root)\n"
          : "";
  EXPECT_EQ(run.standardOutput,
            unsandboxed +
                "page -> host  hello.Greeter.host _2014_07 \"newcomer\" answered Hello, newcomer!\n"
                "page -> host  hello.Greeter.host _2014_07 \"\" gave the exception record "
                "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"The greeter "
                "needs a name\"}}\n"
                "page -> host  tavo.wevlin.infrastructure.services.core.HostConfiguration.host "
                "_2014_07 \"\" answered {\"Version\": \"_2014_07\", \"Settings\": [{\"Key\": "
                "\"greeting.language\", \"Value\": \"en\"}]}\n"
                "host -> page  TestVersionProxy::GetClientServiceVersion() returned {\"Version\": "
                "\"_2014_02\", \"ServiceName\": "
                "\"tavo.wevlin.infrastructure.services.version.TestVersionSvc\", "
                "\"ServiceVersion\": \"_2014_02\"}\n"
                "All calls crossed as expected.\n");
  EXPECT_THAT(run.standardError, IsEmpty());
  ExpectNothingLeftBehind();
}

// Run as the system's unprivileged user "nobody", the browser keeps its
// sandbox: the control passes no --no-sandbox and so writes no line about it,
// and the page still does everything it did. Needs root to switch users (and
// setpriv); without them, the run above was unprivileged already.
TEST_F(HelloProgramTest, RunsWithTheBrowsersSandboxAsAnUnprivilegedUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "not root: the other tests run unprivileged already";
  const std::string setpriv = "/usr/bin/setpriv";
  if (::access(setpriv.c_str(), X_OK) != 0) GTEST_SKIP() << setpriv << " is missing";
  // The unprivileged user writes the browser's profile and its home there.
  ASSERT_EQ(::chmod(temporary_.c_str(), 0777), 0) << std::strerror(errno);
  const ProgramRun run = ProgramRun::Start(
      setpriv, {"--reuid=nobody", "--regid=nogroup", "--clear-groups", "--", kHello},
      {"TMPDIR=" + temporary_.string(), "HOME=" + temporary_.string()});
  ASSERT_EQ(run.exitStatus, 0) << run.standardOutput << run.standardError;
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("sandbox")));
  EXPECT_THAT(run.standardOutput, HasSubstr("All calls crossed as expected.\n"));
  ExpectNothingLeftBehind();
}

TEST_F(HelloProgramTest, MissingBrowserEndsWithStatusTwo) {
  const std::string missing = (temporary_ / "no-such-chromium").string();
  const ProgramRun run = RunHello({"WEVLIN_CHROMIUM=" + missing});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.standardOutput, IsEmpty());
  EXPECT_THAT(run.standardError, HasSubstr("wevlin_hello: Cannot start the browser: " + missing +
                                           " does not exist or is not executable"));
  ExpectNothingLeftBehind();
}

}  // namespace
