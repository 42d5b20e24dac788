// The demo program (examples/demo, the README's main job), run as a user
// runs it: its exit status, its transcript and its screenshot.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "support/PageFiles.h"
#include "support/ProgramRun.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using wevlin_e2e::ProgramRun;

const std::string kDemo = WEVLIN_DEMO_PROGRAM;

std::vector<unsigned char> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>());
}

std::uint32_t BigEndian32(const std::vector<unsigned char>& bytes, std::size_t at) {
  return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) |
         (std::uint32_t{bytes[at + 2]} << 8) | std::uint32_t{bytes[at + 3]};
}

// The CRC-32 that PNG chunks carry (ISO 3309, reflected, polynomial
// 0xEDB88320), over bytes [from, from + count).
std::uint32_t Crc32(const std::vector<unsigned char>& bytes, std::size_t from, std::size_t count) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (std::size_t i = from; i < from + count; ++i) {
    crc ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return crc ^ 0xFFFFFFFFu;
}

// Checks that `path` holds a PNG picture of `width` x `height`: the
// signature, a well-formed IHDR chunk with a correct CRC, and IEND at the end.
void ExpectPng(const std::string& path, std::uint32_t width, std::uint32_t height) {
  const std::vector<unsigned char> png = ReadBytes(path);
  ASSERT_GT(png.size(), 8u + 25u + 12u) << path << " is too short for a PNG";
  const std::vector<unsigned char> signature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  EXPECT_EQ(std::vector<unsigned char>(png.begin(), png.begin() + 8), signature);

  EXPECT_EQ(BigEndian32(png, 8), 13u) << "IHDR length";
  EXPECT_EQ(std::string(png.begin() + 12, png.begin() + 16), "IHDR");
  EXPECT_EQ(BigEndian32(png, 16), width);
  EXPECT_EQ(BigEndian32(png, 20), height);
  EXPECT_EQ(png[24], 8) << "bit depth";
  EXPECT_TRUE(png[25] == 2 || png[25] == 6) << "colour type " << int{png[25]};
  EXPECT_EQ(png[26], 0) << "compression method";
  EXPECT_EQ(png[27], 0) << "filter method";
  EXPECT_LE(png[28], 1) << "interlace method";
  EXPECT_EQ(BigEndian32(png, 29), Crc32(png, 12, 17)) << "IHDR CRC";

  const std::size_t end = png.size() - 12;
  EXPECT_EQ(BigEndian32(png, end), 0u) << "IEND length";
  EXPECT_EQ(std::string(png.begin() + end + 4, png.begin() + end + 8), "IEND");
  EXPECT_EQ(BigEndian32(png, end + 8), Crc32(png, end + 4, 4)) << "IEND CRC";
}

class DemoProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    directory_ = std::filesystem::temp_directory_path() /
                 ("wevlin-demo-test-" +
                  std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    std::filesystem::remove_all(directory_);
    std::filesystem::create_directories(directory_);
  }

  void TearDown() override { std::filesystem::remove_all(directory_); }

  std::filesystem::path directory_;
};

TEST_F(DemoProgramTest, WalksThroughEveryCallAndSavesTheScreenshot) {
  const std::string picture = (directory_ / "shots" / "demo.png").string();
  const ProgramRun run = ProgramRun::Start(kDemo, {"--screenshot", picture});
  const std::string& out = run.standardOutput;
  ASSERT_EQ(run.exitStatus, 0) << out << run.standardError;
  EXPECT_THAT(run.standardError, IsEmpty());

  // Launch, handshake and login, in this order.
  std::size_t at = 0;
  for (const char* state :
       {"state  NoContent -> Navigating", "state  Navigating -> Waiting",
        "state  Waiting -> Initializing", "state  Initializing -> LoadedCanTalk",
        "state  LoadedCanTalk -> LoggedIn"}) {
    const std::size_t found = out.find(state, at);
    ASSERT_NE(found, std::string::npos) << state << " missing or out of order in\n" << out;
    at = found;
  }
  EXPECT_THAT(out, HasSubstr("script    tavoInterop_Ping('0.9');"));
  EXPECT_THAT(out, HasSubstr("script    tavoInterop_HostServiceListUpdate('Add','[{\"FQN\": "));
  EXPECT_THAT(out, HasSubstr("script    tavoInterop_RequestWebServiceList();"));
  EXPECT_THAT(out, HasSubstr("page version  \"demo-page 1.0\""));

  // Every call of the page into the host, with what the host's handlers did.
  for (const char* call : {
           "service   core.HostConfiguration.host _2014_02, method",
           "service   core.HostConfiguration.host _2014_07, method",
           "service   core.ClientStatus.host _2014_07, event",
           "service   LoggerForward.host _2014_02, method",
           "service   session.Session.host _2014_07, event",
           "service   refresh.Refresh.host _2014_07, event",
           "service   version.TestVersionSvc _2014_02, method",
           "service   version.TestVersionSvc _2014_03, method",
           "service   soa.AsyncSoaJsonMessage.host _2014_02, event",
           "service   soa.RequestHostAuth.host _2014_02, event",
           "service   soa.HostSessionInfo.host _2014_02, method",
           "call      tavoHostPing()",
           "service   tavo.demo.Missing.host _2014_07, method",
           "host      GetHostConfiguration (_2014_02) asked",
           "host      GetHostConfiguration (_2014_07) asked",
           "host      OnClientStatus: the page is busy",
           "host      log entry [Info] The demo page is up and talking",
           "host      OnSession: session objects 1 demo-db/user-42 (User)",
           "host      OnRefresh: created 1 demo-db/note-7 (Note)",
           "host      OnSoaJsonRequest: Inventory.CountItems",
           "worker    #1 answered after",
           "answer    {\"Category\": \"Tea\", \"Count\": 42, \"Warehouse\": \"North\"}",
           "host      OnRequestHostAuth: a worker signs demo.user in",
           "worker    #2 signed demo.user in after",
           "\"IsAuthenticated\": true",
           "host      GetHostSessionInfo asked; session active: yes, user demo.user",
           "reply     0.9",
       }) {
    EXPECT_THAT(out, HasSubstr(call));
  }
  EXPECT_THAT(out, HasSubstr("record    {\"Exception\": {\"name\": \"std::invalid_argument\", "
                             "\"message\": \"No matching service descriptor found for: "
                             "tavo.demo.Missing.host ver: _2014_07\"}}"));

  // Every call of the host into the page.
  for (const char* call : {
           "IsTargetServiceAvailable for each proxy",
           "no        session.Session.client _2014_02",
           "SessionProxy::UpdateSession",
           "RefreshProxy::SendRefresh",
           "OpenLocationProxy::openLocation",
           "ClientInfoProxy::GetClientInfo",
           "reply     page = wevlin demo page",
           "TestVersionProxy::GetClientServiceVersion",
           "TestVersionProxy01::GetClientServiceVersion",
           "\"ServiceVersion\": \"_2014_03\", \"Result\": true",
           "script    tavoInterop_WebEvent('{\"FQN\": "
           "\"tavo.wevlin.infrastructure.services.session.Session.client\"",
           "threw     std::runtime_error \"RangeError The demo page refuses this call on purpose\"",
       }) {
    EXPECT_THAT(out, HasSubstr(call));
  }

  // Times, verdicts and the picture.
  EXPECT_TRUE(std::regex_search(out, std::regex("took +[0-9]+\\.[0-9] ms")));
  EXPECT_THAT(out, HasSubstr("13 page -> host, 8 host -> page"));
  EXPECT_TRUE(std::regex_search(out, std::regex("result +all [0-9]+ checks passed")));
  EXPECT_THAT(out, Not(HasSubstr("FAILED")));
  EXPECT_THAT(out, HasSubstr("saved the page as " + picture));
  // Standard output is not a terminal here: no colour.
  EXPECT_THAT(out, Not(HasSubstr("\x1b[")));
  ExpectPng(picture, 1280, 800);
}

TEST_F(DemoProgramTest, HelpPrintsTheUsage) {
  const ProgramRun run = ProgramRun::Start(kDemo, {"--help"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_THAT(run.standardOutput, HasSubstr("Usage: " + kDemo));
  for (const char* option : {"--page URL", "--timeout-ms N", "--screenshot PATH", "--help"}) {
    EXPECT_THAT(run.standardOutput, HasSubstr(option));
  }
  EXPECT_THAT(run.standardError, IsEmpty());
}

TEST_F(DemoProgramTest, UnknownOptionIsRefused) {
  const ProgramRun run = ProgramRun::Start(kDemo, {"--frobnicate"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_EQ(run.standardError, kDemo + ": unknown option --frobnicate\nTry " + kDemo + " --help\n");
  EXPECT_THAT(run.standardOutput, IsEmpty());
}

TEST_F(DemoProgramTest, BadTimeoutsAreRefused) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--timeout-ms", "0"},
                                                    {"--timeout-ms", "ten"},
                                                    {"--timeout-ms=-5"},
                                                    {"--timeout-ms"}}) {
    const ProgramRun run = ProgramRun::Start(kDemo, arguments);
    EXPECT_EQ(run.exitStatus, 2) << arguments.back();
    EXPECT_THAT(run.standardError, HasSubstr("--timeout-ms")) << arguments.back();
    EXPECT_THAT(run.standardOutput, IsEmpty());
  }
}

TEST_F(DemoProgramTest, MissingBrowserNamesItsPackage) {
  const ProgramRun run =
      ProgramRun::Start(kDemo, {"--screenshot", (directory_ / "none.png").string()},
                        {"WEVLIN_CHROMIUM=" + (directory_ / "no-such-chromium").string()});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_THAT(run.standardOutput, HasSubstr("The browser did not start: Cannot start the browser"));
  EXPECT_THAT(run.standardOutput, HasSubstr("apt-get install chromium"));
  EXPECT_THAT(run.standardError,
              HasSubstr(": the browser did not start: Cannot start the browser"));
  EXPECT_THAT(run.standardError, HasSubstr("apt-get install chromium"));
  EXPECT_FALSE(std::filesystem::exists(directory_ / "none.png"));
}

TEST_F(DemoProgramTest, PageThatNeverLogsInFailsAfterTheTimeout) {
  const std::string picture = (directory_ / "plain.png").string();
  const ProgramRun run =
      ProgramRun::Start(kDemo, {"--page", wevlin_e2e::PageFiles::Url("plain.html"), "--timeout-ms",
                                "3000", "--screenshot", picture});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_THAT(run.standardOutput,
              HasSubstr("page      " + wevlin_e2e::PageFiles::Url("plain.html")));
  EXPECT_THAT(run.standardOutput,
              HasSubstr("The page did not log in within 3000 ms; its state is Waiting."));
  EXPECT_THAT(run.standardOutput, HasSubstr("Caught exception running tavoInterop_Ping"));
  EXPECT_EQ(run.standardError,
            kDemo +
                ": 1 of 2 checks failed, the first: The page did not log in within 3000 ms; "
                "its state is Waiting.\n");
  // The picture is still taken, to show what the page looked like.
  ExpectPng(picture, 1280, 800);
}

}  // namespace
