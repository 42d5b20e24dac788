// The demo program (examples/demo, the README's main job), run as a user
// runs it: its exit status, its transcript and its screenshot, with its
// standard output on a pipe and on a terminal, and what it leaves behind
// (nothing: no browser process, no browser profile).

#include <stdlib.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/PageFiles.h"
#include "support/ProcessScan.h"
#include "support/ProgramRun.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using wevlin_e2e::ProcessScan;
using wevlin_e2e::ProgramRun;

const std::string kDemo = WEVLIN_DEMO_PROGRAM;

// The name that the browser control gives each browser profile it makes in
// the temporary directory ($TMPDIR, else /tmp), followed by six characters.
constexpr char kProfilePrefix[] = "wevlin-chromium-";

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

// Returns the part of `out` from the line that contains `header` to the next
// stamped line ("[  1234 ms] ...") or section heading: one step of the demo.
// Empty when no line contains `header`.
std::string StepOf(const std::string& out, const std::string& header) {
  const std::size_t at = out.find(header);
  if (at == std::string::npos) return "";
  const std::size_t end = std::min(out.find("\n[", at), out.find("\n\n", at));
  return out.substr(at, end == std::string::npos ? std::string::npos : end - at + 1);
}

// Checks that `texts` occur in `step` in this order, and that the step ends
// with the demo's verdict "ok".
void ExpectStep(const std::string& step, const std::vector<std::string>& texts) {
  std::size_t at = 0;
  for (const std::string& text : texts) {
    const std::size_t found = step.find(text, at);
    ASSERT_NE(found, std::string::npos) << text << " missing or out of order in\n" << step;
    at = found + text.size();
  }
  EXPECT_THAT(step, ::testing::EndsWith("\n                      ok\n")) << step;
}

class DemoProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    directory_ = std::filesystem::temp_directory_path() /
                 ("wevlin-demo-test-" +
                  std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    std::filesystem::remove_all(directory_);
    std::filesystem::create_directories(directory_);
    // The browser makes its sockets in a directory of the temporary
    // directory, and a socket's path may not be longer than 107 bytes, so
    // the name is kept short.
    std::string pattern = (std::filesystem::temp_directory_path() / "wevlin-demo-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr) << std::strerror(errno);
    temporary_ = pattern;
  }

  void TearDown() override {
    std::filesystem::remove_all(directory_);
    if (!temporary_.empty()) std::filesystem::remove_all(temporary_);
  }

  // Runs the demo with `arguments` and `environment`, its temporary directory
  // (where the browser control makes the browser's profile) a fresh one of
  // its own, and checks what the run left behind.
  ProgramRun RunDemo(const std::vector<std::string>& arguments,
                     std::vector<std::string> environment = {}) {
    environment.push_back("TMPDIR=" + temporary_.string());
    const ProgramRun run = ProgramRun::Start(kDemo, arguments, environment);
    ExpectNothingLeftBehind(run.standardOutput);
    return run;
  }

  // The same with the demo's standard output on a terminal.
  ProgramRun RunDemoOnTerminal(const std::vector<std::string>& arguments) {
    const ProgramRun run = ProgramRun::StartOnTerminal(
        kDemo, arguments, {"TMPDIR=" + temporary_.string()}, std::chrono::seconds(120));
    ExpectNothingLeftBehind(run.standardOutput);
    return run;
  }

  // Checks that the run whose transcript is `out` left no browser process and
  // nothing in its temporary directory. When the browser started, the
  // transcript names its process (which leads its own process group) and its
  // profile, which must have been made in that directory: the browser's
  // command line names the profile (--user-data-dir), so a process that
  // still mentions it, or is in the browser's group, was left behind. A
  // process killed at the very end may take a moment to go, so the scan is
  // repeated for up to five seconds.
  void ExpectNothingLeftBehind(const std::string& out) {
    std::smatch match;
    std::int64_t browser = -1;
    if (std::regex_search(out, match, std::regex("headless Chromium started, process ([0-9]+)"))) {
      browser = std::stoll(match[1].str());
    }
    std::string profile = (temporary_ / kProfilePrefix).string();
    if (std::regex_search(out, match, std::regex("profile +(\\S+) \\(removed"))) {
      profile = match[1].str();
      EXPECT_EQ(profile.rfind((temporary_ / kProfilePrefix).string(), 0), 0u)
          << "the profile " << profile << " is not in the demo's temporary directory "
          << temporary_;
      EXPECT_EQ(profile.size(), (temporary_ / kProfilePrefix).string().size() + 6) << profile;
    } else {
      EXPECT_EQ(browser, -1) << "the transcript names the browser but not its profile";
    }

    std::vector<long> left = ProcessScan::Running(browser, profile);
    for (int i = 0; i < 50 && !left.empty(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      left = ProcessScan::Running(browser, profile);
    }
    EXPECT_THAT(left, IsEmpty()) << "processes of the browser " << browser << " or of " << profile
                                 << " still run";

    std::vector<std::string> entries;
    for (const auto& entry : std::filesystem::directory_iterator(temporary_)) {
      entries.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(entries, IsEmpty()) << "left in the demo's temporary directory " << temporary_;
  }

  std::filesystem::path directory_;
  std::filesystem::path temporary_;
};

TEST_F(DemoProgramTest, WalksThroughEveryCallAndSavesTheScreenshot) {
  const std::string picture = (directory_ / "shots" / "demo.png").string();
  const ProgramRun run = RunDemo({"--screenshot", picture});
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
  EXPECT_THAT(out, HasSubstr("the page announced 9 services:"));

  // Every call of the page into the host, in order, each with what the host's
  // handlers did and the demo's verdict.
  ExpectStep(StepOf(out, "page -> host  [1/15] host configuration (fixed keys)"),
             {"service   core.HostConfiguration.host _2014_02, method (tavoHostMethod)",
              "host      GetHostConfiguration (_2014_02) asked", "reply     {\"Version\": "});
  ExpectStep(StepOf(out, "page -> host  [2/15] host configuration (settings list)"),
             {"service   core.HostConfiguration.host _2014_07, method (tavoHostMethod)",
              "host      GetHostConfiguration (_2014_07) asked; answering 3 settings",
              "reply     {\"Version\": \"_2014_07\", \"Settings\": "});
  ExpectStep(StepOf(out, "page -> host  [3/15] client status"),
             {"service   core.ClientStatus.host _2014_07, event (tavoHostEvent)",
              "host      OnClientStatus: the page is busy"});
  ExpectStep(StepOf(out, "page -> host  [4/15] log forwarding"),
             {"service   LoggerForward.host _2014_02, method (tavoHostMethod)",
              "host      log entry [Info] The demo page is up and talking", "reply     OK"});
  ExpectStep(StepOf(out, "page -> host  [5/15] log forwarding, raised as an event"),
             {"service   LoggerForward.host _2014_02, event (tavoHostEvent)",
              "host      log entry [Warning] The demo page raised this entry as an event",
              "reply     \"\" (an event has no reply)"});
  ExpectStep(StepOf(out, "page -> host  [6/15] session"),
             {"service   session.Session.host _2014_07, event (tavoHostEvent)",
              "host      OnSession: session objects 1 demo-db/user-42 (User)"});
  ExpectStep(StepOf(out, "page -> host  [7/15] refresh"),
             {"service   refresh.Refresh.host _2014_07, event (tavoHostEvent)",
              "host      OnRefresh: created 1 demo-db/note-7 (Note)"});
  ExpectStep(StepOf(out, "page -> host  [8/15] version test, first version"),
             {"service   version.TestVersionSvc _2014_02, method (tavoHostMethod)",
              "\"ServiceVersion\": \"_2014_02\""});
  ExpectStep(StepOf(out, "page -> host  [9/15] version test, second version"),
             {"service   version.TestVersionSvc _2014_03, method (tavoHostMethod)",
              "\"ServiceVersion\": \"_2014_03\", \"Result\": true"});
  // The two asynchronous services: a worker answers after a delay and calls
  // the library's callback on its own thread, which sends the reply into the
  // page from there; the page's reply service then has it.
  ExpectStep(StepOf(out, "page -> host  [10/15] asynchronous SOA request"),
             {"service   soa.AsyncSoaJsonMessage.host _2014_02, event (tavoHostEvent)",
              "host      OnSoaJsonRequest: Inventory.CountItems", "worker    #1 answered after",
              "worker    #1 calls the library's callback on its own thread, not the UI thread",
              "script    tavoInterop_WebEvent('{\"FQN\": "
              "\"tavo.wevlin.infrastructure.services.soa.SoaJsonRequest.client\"",
              "worker    #1 the callback returned after",
              "the reply was sent to the page from worker thread #1", "async     after",
              "\"CacheId\": \"soa-1\"",
              "answer    {\"Category\": \"Tea\", \"Count\": 42, \"Warehouse\": \"North\"}"});
  ExpectStep(StepOf(out, "page -> host  [11/15] host login request"),
             {"service   soa.RequestHostAuth.host _2014_02, event (tavoHostEvent)",
              "host      OnRequestHostAuth: a worker signs demo.user in",
              "worker    #2 signed demo.user in after",
              "worker    #2 calls the library's callback on its own thread, not the UI thread",
              "script    tavoInterop_WebEvent('{\"FQN\": "
              "\"tavo.wevlin.infrastructure.services.soa.RequestHostAuthReply.client\"",
              "worker    #2 the callback returned after",
              "the reply was sent to the page from worker thread #2", "async     after",
              "\"IsAuthenticated\": true"});
  EXPECT_THAT(out, Not(HasSubstr("callback on the UI thread")));
  EXPECT_THAT(out, Not(HasSubstr("sent to the page from the UI thread")));
  ExpectStep(StepOf(out, "page -> host  [12/15] host session information"),
             {"service   soa.HostSessionInfo.host _2014_02, method (tavoHostMethod)",
              "host      GetHostSessionInfo asked; session active: yes, user demo.user",
              "\"IsSessionActive\": true, \"UserName\": \"demo.user\""});
  ExpectStep(StepOf(out, "page -> host  [13/15] ping"),
             {"call      tavoHostPing()", "reply     0.9"});
  // The page registers a service late and announces its list; the host's
  // instance learns the service from it.
  ExpectStep(
      StepOf(out, "page -> host  [14/15] the page offers one more service and announces its list"),
      {"call      tavoHost_WebSideServiceListUpdate('Replace', the page's service list)",
       "service   tavo.demo.Echo.client _2014_07, registered by the page just now",
       "before    the host knows 9 page services; IsTargetServiceAvailable: no", "reply     \"\"",
       "after     the host knows 10 page services; IsTargetServiceAvailable: yes"});
  ExpectStep(StepOf(out, "page -> host  [15/15] a host service that does not exist"),
             {"service   tavo.demo.Missing.host _2014_07, method (tavoHostMethod)",
              "record    {\"Exception\": {\"name\": \"std::invalid_argument\", "
              "\"message\": \"No matching service descriptor found for: "
              "tavo.demo.Missing.host ver: _2014_07\"}}"});

  // Every call of the host into the page, in order.
  ExpectStep(
      StepOf(out, "host -> page  [1/9] IsTargetServiceAvailable for each proxy"),
      {"yes       session.Session.client _2014_07", "yes       refresh.Refresh.client _2014_07",
       "yes       openlocation.OpenLocation.client _2014_02",
       "yes       clientinfo.ClientInfo.client _2014_07",
       "yes       version.TestVersionSvc _2014_02", "yes       version.TestVersionSvc _2014_03",
       "yes       tavo.demo.Failing.client _2014_07", "yes       tavo.demo.Echo.client _2014_07",
       "no        session.Session.client _2014_02"});
  ExpectStep(StepOf(out, "host -> page  [2/9] SessionProxy::UpdateSession"),
             {"service   session.Session.client _2014_07, event",
              "script    tavoInterop_WebEvent('{\"FQN\": "
              "\"tavo.wevlin.infrastructure.services.session.Session.client\"",
              "page got  {\"Version\": \"_2014_07\", \"SessionObjects\": "});
  ExpectStep(StepOf(out, "host -> page  [3/9] RefreshProxy::SendRefresh"),
             {"service   refresh.Refresh.client _2014_07, event",
              "page got  {\"Version\": \"_2014_07\", \"CreatedObjects\": "});
  ExpectStep(StepOf(out, "host -> page  [4/9] OpenLocationProxy::openLocation"),
             {"service   openlocation.OpenLocation.client _2014_02, event",
              "page got  {\"Version\": \"_2014_02\", \"location\": \"inbox\""});
  ExpectStep(StepOf(out, "host -> page  [5/9] ClientInfoProxy::GetClientInfo"),
             {"service   clientinfo.ClientInfo.client _2014_07, method",
              "reply     page = wevlin demo page"});
  ExpectStep(StepOf(out, "host -> page  [6/9] TestVersionProxy::GetClientServiceVersion"),
             {"service   version.TestVersionSvc _2014_02, method",
              "reply     {\"Version\": \"_2014_02\""});
  ExpectStep(StepOf(out, "host -> page  [7/9] TestVersionProxy01::GetClientServiceVersion"),
             {"service   version.TestVersionSvc _2014_03, method",
              "\"ServiceVersion\": \"_2014_03\", \"Result\": true"});
  ExpectStep(StepOf(out, "host -> page  [8/9] a page service announced late"),
             {"service   tavo.demo.Echo.client _2014_07, method, called with InvokeWebMethod",
              "payload   {\"Text\": \"hello from the host\"}",
              "script    tavoInterop_WebMethod('{\"FQN\": \"tavo.demo.Echo.client\"",
              "reply     The page echoes: {\"Text\": \"hello from the host\"}"});
  ExpectStep(StepOf(out, "host -> page  [9/9] a page service that throws"),
             {"service   tavo.demo.Failing.client _2014_07, method, called with InvokeWebMethod",
              "threw     std::runtime_error \"RangeError The demo page refuses this call on "
              "purpose\""});

  // Times, verdicts and the picture.
  EXPECT_TRUE(std::regex_search(out, std::regex("took +[0-9]+\\.[0-9] ms")));
  EXPECT_THAT(out, HasSubstr("15 page -> host, 9 host -> page"));
  // One check for the login, one per call and one for the screenshot.
  EXPECT_THAT(out, HasSubstr("result    all 26 checks passed"));
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
  const ProgramRun run = RunDemo({"--screenshot", (directory_ / "none.png").string()},
                                 {"WEVLIN_CHROMIUM=" + (directory_ / "no-such-chromium").string()});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_THAT(run.standardOutput, HasSubstr("The browser did not start: Cannot start the browser"));
  EXPECT_THAT(run.standardOutput, HasSubstr("apt-get install chromium"));
  EXPECT_THAT(run.standardError,
              HasSubstr(": the browser did not start: Cannot start the browser"));
  EXPECT_THAT(run.standardError, HasSubstr("apt-get install chromium"));
  EXPECT_FALSE(std::filesystem::exists(directory_ / "none.png"));
}

// A browser that is there but dies at once is not cured by installing one:
// the demo says so instead of suggesting the package.
TEST_F(DemoProgramTest, BrowserThatDiesAtStartIsNotCalledMissing) {
  const ProgramRun run =
      RunDemo({"--screenshot", (directory_ / "none.png").string()}, {"WEVLIN_CHROMIUM=/bin/false"});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_THAT(run.standardOutput, HasSubstr("The browser did not start: "));
  EXPECT_THAT(run.standardOutput,
              HasSubstr("The browser is there but did not come up; its own messages above say "
                        "why."));
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("apt-get install chromium")));
  EXPECT_THAT(run.standardError, Not(HasSubstr("apt-get install chromium")));
  EXPECT_FALSE(std::filesystem::exists(directory_ / "none.png"));
}

TEST_F(DemoProgramTest, PageThatNeverLogsInFailsAfterTheTimeout) {
  const std::string picture = (directory_ / "plain.png").string();
  const ProgramRun run = RunDemo({"--page", wevlin_e2e::PageFiles::Url("plain.html"),
                                  "--timeout-ms", "3000", "--screenshot", picture});
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
  EXPECT_THAT(run.standardOutput, Not(HasSubstr("\x1b[")));
  // The picture is still taken, to show what the page looked like.
  ExpectPng(picture, 1280, 800);
}

// On a terminal the transcript is coloured: each line in the colour of its
// kind, reset at its end. A page that never logs in gives headings, state
// changes and failures in a few seconds.
TEST_F(DemoProgramTest, TranscriptOnATerminalIsColoured) {
  const std::string picture = (directory_ / "terminal.png").string();
  const ProgramRun run = RunDemoOnTerminal({"--page", wevlin_e2e::PageFiles::Url("plain.html"),
                                            "--timeout-ms", "1500", "--screenshot", picture});
  const std::string& out = run.standardOutput;
  EXPECT_EQ(run.exitStatus, 1) << out << run.standardError;
  // Bold headings, cyan state changes, bold red failures, plain lines as
  // they are.
  EXPECT_THAT(out, HasSubstr("\x1b[1mwevlin demo: a native host and a web page talking through "
                             "wevlin 0.9\x1b[0m\n"));
  EXPECT_THAT(out, HasSubstr("\n\x1b[1m== Launch, handshake and login\x1b[0m\n"));
  EXPECT_TRUE(std::regex_search(
      out, std::regex("\n\x1b\\[36m\\[ +[0-9]+ ms\\] state  NoContent -> Navigating: [^\n]*"
                      "\x1b\\[0m\n")))
      << out;
  EXPECT_TRUE(std::regex_search(
      out, std::regex("\n\x1b\\[36m\\[ +[0-9]+ ms\\] state  Navigating -> Waiting: [^\n]*"
                      "\x1b\\[0m\n")))
      << out;
  EXPECT_TRUE(std::regex_search(out, std::regex("\n\x1b\\[1;31m\\[ +[0-9]+ ms\\] The page did "
                                                "not log in within 1500 ms; its state is "
                                                "Waiting\\.\x1b\\[0m\n")))
      << out;
  EXPECT_THAT(
      out, HasSubstr("\n            page      " + wevlin_e2e::PageFiles::Url("plain.html") + "\n"));
  // Standard error is not the terminal: the summary there has no colour.
  EXPECT_EQ(run.standardError,
            kDemo +
                ": 1 of 2 checks failed, the first: The page did not log in within 1500 ms; "
                "its state is Waiting.\n");
  ExpectPng(picture, 1280, 800);
}

}  // namespace
