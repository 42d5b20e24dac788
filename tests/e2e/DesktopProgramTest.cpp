// The desktop example (examples/desktop), run as a user runs it without a
// screen: under xvfb-run, with --screenshot. Checks its exit status, the
// transcript it prints of what crossed between the native window and the
// page, and the picture it saves of the whole window.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "support/ProgramRun.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using wevlin_e2e::ProgramRun;

#ifdef WEVLIN_DESKTOP_PROGRAM
const std::string kDesktop = WEVLIN_DESKTOP_PROGRAM;
#else
const std::string kDesktop;  // the build has no desktop example
#endif
const std::string kXvfbRun = "/usr/bin/xvfb-run";

// The size the example's window asks for; the header bar and the window's
// frame come on top of it.
constexpr std::uint32_t kRequestedWidth = 1180;
constexpr std::uint32_t kRequestedHeight = 720;

// Lines of the transcript, each exactly as the example prints it, in the
// order in which they must appear.
const std::string kRequest = R"({"Warehouse": "North", "Category": "Tea"})";
const std::string kAnswer = R"({"Category": "Tea", "Count": 42, "Warehouse": "North"})";
const std::vector<std::string> kExchange = {
    "state    LoggedIn\n",
    "page     is busy\n",
    "page     asked for the host configuration (4 settings)\n",
    "page log Info: The desktop page is up (wevlin.js 0.9.0)\n",
    "page     asks Inventory.CountItems " + kRequest + "; a worker answers in 400 ms\n",
    "worker   answered Inventory.CountItems: " + kAnswer + "\n",
    "page log Info: Request answered: 42 items of Tea\n",
    "page     is idle\n",
    "host     sent a session: desk.user (User); preferences: units = boxes\n",
    "host     sent a refresh: updated tea-north (Stock); deleted tea-south (Stock)\n",
    "page log Info: Session received: desk.user (User); preferences: units = boxes\n",
    "page log Info: Refresh received: updated tea-north (Stock); deleted tea-south (Stock)\n",
};

// Width and height from a PNG file's header, or zeros when the file does not
// start with a PNG signature and an IHDR chunk.
struct PngSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

PngSize ReadPngSize(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string head((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::string signature("\x89PNG\r\n\x1a\n", 8);
  if (head.size() < 24 || head.compare(0, 8, signature) != 0 || head.compare(12, 4, "IHDR") != 0) {
    return {};
  }
  const auto bigEndian = [&](std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      value = (value << 8U) | static_cast<unsigned char>(head[at + i]);
    }
    return value;
  };
  return {bigEndian(16), bigEndian(20)};
}

class DesktopProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (kDesktop.empty()) GTEST_SKIP() << "this build has no desktop example";
    if (::access(kXvfbRun.c_str(), X_OK) != 0) GTEST_SKIP() << kXvfbRun << " is missing";
    std::string pattern =
        (std::filesystem::temp_directory_path() / "wevlin-desktop-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr) << std::strerror(errno);
    temporary_ = pattern;
  }

  // WebKit's helper processes end a moment after the program and may still
  // write their caches meanwhile, so the removal is tried for a few seconds.
  void TearDown() override {
    if (temporary_.empty()) return;
    std::error_code error;
    for (int i = 0; i < 50; ++i) {
      std::filesystem::remove_all(temporary_, error);
      if (!error) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    ADD_FAILURE() << "cannot remove " << temporary_ << ": " << error.message();
  }

  // Runs the example under its own X server with `arguments`; WebKit's
  // caches and settings go below the temporary directory.
  ProgramRun RunDesktop(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {"-a", kDesktop};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const std::string home = temporary_.string();
    return ProgramRun::Start(
        kXvfbRun, all,
        {"HOME=" + home, "XDG_CACHE_HOME=" + home + "/cache", "XDG_DATA_HOME=" + home + "/data",
         "XDG_CONFIG_HOME=" + home + "/config"});
  }

  std::filesystem::path temporary_;
};

TEST_F(DesktopProgramTest, SavesThePictureOfTheWindowAfterTheExchange) {
  const std::filesystem::path picture = temporary_ / "desktop.png";
  const ProgramRun run = RunDesktop({"--screenshot", picture.string()});
  ASSERT_EQ(run.exitStatus, 0) << run.standardOutput << run.standardError;
  EXPECT_THAT(run.standardError, IsEmpty());

  // Every line of the exchange, in order.
  std::size_t from = 0;
  for (const std::string& line : kExchange) {
    const std::size_t at = run.standardOutput.find(line, from);
    ASSERT_NE(at, std::string::npos)
        << "missing after offset " << from << ": " << line << run.standardOutput;
    from = at + line.size();
  }
  // A clean run writes no line of the library (failures, the page's console).
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("\nwevlin   "))) << run.standardOutput;

  // The last line names the picture and its size, which is the window's.
  const std::regex saved("host     saved the ([0-9]+)x([0-9]+) window to (.*)\n$");
  std::smatch match;
  ASSERT_TRUE(std::regex_search(run.standardOutput, match, saved)) << run.standardOutput;
  EXPECT_EQ(match[3].str(), picture.string());
  const PngSize size = ReadPngSize(picture);
  EXPECT_EQ(std::to_string(size.width), match[1].str());
  EXPECT_EQ(std::to_string(size.height), match[2].str());
  EXPECT_GE(size.width, kRequestedWidth);
  EXPECT_GE(size.height, kRequestedHeight);
}

TEST_F(DesktopProgramTest, GivesUpWithStatusOneWhenThePageIsTooSlow) {
  const std::filesystem::path picture = temporary_ / "desktop.png";
  const ProgramRun run = RunDesktop({"--screenshot", picture.string(), "--quit-after-ms", "1"});
  EXPECT_EQ(run.exitStatus, 1) << run.standardOutput << run.standardError;
  EXPECT_THAT(run.standardError,
              HasSubstr("wevlin_desktop: gave up waiting for the page to log in and finish its "
                        "calls after 1 ms\n"));
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(DesktopProgramTest, WithoutADisplayEndsWithStatusTwo) {
  const ProgramRun run = ProgramRun::Start(kDesktop, {"--screenshot", "unused.png"},
                                           {"DISPLAY=", "WAYLAND_DISPLAY=", "GDK_BACKEND=x11"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.standardOutput, IsEmpty());
  EXPECT_THAT(run.standardError, HasSubstr("wevlin_desktop: cannot open a display"));
}

TEST_F(DesktopProgramTest, UnknownOptionEndsWithStatusTwo) {
  const ProgramRun run = RunDesktop({"--no-such-option"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_THAT(run.standardOutput, IsEmpty());
  EXPECT_THAT(run.standardError,
              HasSubstr("wevlin_desktop: unknown option or missing value: --no-such-option\n"));
}

}  // namespace
