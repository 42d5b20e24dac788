#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

#include <signal.h>
#include <stdlib.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/BrowserFixture.h"
#include "support/PageFiles.h"
#include "support/ProcessScan.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/ChromiumOptions.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumError;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumOptions;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumWebControl;
using ScriptException = IWebControl::ScriptException;
using wevlin_e2e::ExpectNothingLeft;
using wevlin_e2e::PageFiles;
using wevlin_e2e::ProcessScan;
using wevlin_test::StdoutCapture;
using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kWait = 30s;

// U+FFFD REPLACEMENT CHARACTER in UTF-8.
const std::string kReplacement = "\xEF\xBF\xBD";

std::string TempDirectory() {
  const char* tmp = ::getenv("TMPDIR");
  return tmp != nullptr && *tmp != '\0' ? tmp : "/tmp";
}

// Returns the names of the profile directories the control makes, so that a
// test can tell whether a failed start left one behind.
std::vector<std::string> ProfileDirectories() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(TempDirectory())) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("wevlin-chromium-", 0) == 0) names.push_back(name);
  }
  return names;
}

// Returns the ids of the processes whose command line is exactly `line`.
std::vector<long> ProcessesRunning(const std::string& line) {
  std::vector<long> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "cmdline", std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    for (char& c : text) {
      if (c == '\0') c = ' ';
    }
    if (text == line + " " && ProcessScan::IsRunning(std::stol(name))) {
      found.push_back(std::stol(name));
    }
  }
  return found;
}

// Records each load the control reports, with the thread it came on, and
// runs an optional action inside it.
class RecordingLoadObserver : public IWebControl::ILoadObserver {
 public:
  void OnLoadCompleted() override {
    threads.push_back(std::this_thread::get_id());
    if (action) action();
  }

  std::vector<std::thread::id> threads;
  std::function<void()> action;
};

// One control per test (started by the test with the options it needs), a
// load observer on it, and the check that the browser left nothing behind.
class ChromiumWebControlTest : public ::testing::Test {
 protected:
  void Start(ChromiumOptions options = ChromiumOptions()) {
    control_ = std::make_unique<ChromiumWebControl>(options);
    control_->AddLoadObserver(&observer_);
  }

  void TearDown() override {
    if (!control_) return;
    const std::int64_t pid = control_->BrowserProcessId();
    const std::string profile = control_->ProfileDirectory();
    control_.reset();
    ExpectNothingLeft(pid, profile);
  }

  // Navigates to page `name` and waits for the load to be reported.
  void Open(const std::string& name) {
    const std::size_t before = observer_.threads.size();
    control_->Navigate(PageFiles::Url(name));
    ASSERT_TRUE(control_->RunUntil([&] { return observer_.threads.size() > before; }, kWait))
        << "no load of " << name;
  }

  std::string Eval(const std::string& script) { return control_->ExecuteScript(script); }

  // Runs `script`, which must fail, and returns the exception.
  ScriptException Failure(const std::string& script) {
    try {
      const std::string value = control_->ExecuteScript(script);
      ADD_FAILURE() << script << " gave " << value;
    } catch (const ScriptException& exception) {
      return exception;
    }
    return ScriptException();
  }

  // Starts `call` (a Promise-valued expression) in the page, delivers events
  // until it settles, and returns "resolved: <value>" or "rejected: <message>".
  std::string Settle(const std::string& call) {
    Eval("globalThis.outcome = ''; (" + call +
         ").then(v => { outcome = 'resolved: ' + v; }, e => { outcome = 'rejected: ' + "
         "e.message; }); ''");
    control_->RunUntil([&] { return Eval("outcome") != ""; }, kWait);
    return Eval("outcome");
  }

  std::unique_ptr<ChromiumWebControl> control_;
  RecordingLoadObserver observer_;
};

// Expects that constructing a control with `options` throws a ChromiumError
// of kind LaunchFailed with the text `message`.
void ExpectLaunchFailure(const ChromiumOptions& options, const std::string& message) {
  try {
    ChromiumWebControl control(options);
    ADD_FAILURE() << "the control started";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::LaunchFailed);
    EXPECT_EQ(std::string(error.what()), message);
  }
}

TEST_F(ChromiumWebControlTest, StartsWithAFreshProfileAndEndsWithoutATrace) {
  Start();
  const std::string profile = control_->ProfileDirectory();
  EXPECT_EQ(profile.rfind(TempDirectory() + "/wevlin-chromium-", 0), 0u) << profile;
  EXPECT_TRUE(std::filesystem::is_directory(profile));
  EXPECT_TRUE(control_->IsBrowserRunning());
  EXPECT_TRUE(ProcessScan::IsRunning(control_->BrowserProcessId()));
  EXPECT_FALSE(ProcessScan::Running(control_->BrowserProcessId(), profile).empty());
  // TearDown destroys the control and checks that nothing is left.
}

TEST_F(ChromiumWebControlTest, BrowserRunsHeadlessOnAPipeWithItsOwnProfile) {
  Start();
  const std::vector<std::string> arguments = ProcessScan::Arguments(control_->BrowserProcessId());
  ASSERT_FALSE(arguments.empty());
  const auto has = [&](const std::string& argument) {
    return std::find(arguments.begin(), arguments.end(), argument) != arguments.end();
  };
  std::string all;
  for (const std::string& argument : arguments) all += argument + "\n";
  for (const char* flag :
       {"--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
        "--disable-background-networking", "--disable-component-update", "--disable-sync",
        "--remote-debugging-pipe"}) {
    EXPECT_TRUE(has(flag)) << flag << " is missing from\n" << all;
  }
  EXPECT_TRUE(has("--user-data-dir=" + control_->ProfileDirectory())) << all;
  for (const std::string& argument : arguments) {
    EXPECT_NE(argument.rfind("--remote-debugging-port", 0), 0u) << all;
  }
}

TEST_F(ChromiumWebControlTest, MissingExecutableIsNamedWithItsPackage) {
  const std::vector<std::string> before = ProfileDirectories();
  ChromiumOptions options;
  options.executable = "/nonexistent/chromium";
  ExpectLaunchFailure(options,
                      "Cannot start the browser: /nonexistent/chromium does not exist or is not "
                      "executable (install the Debian package chromium)");
  options.executable = "no-such-browser-on-the-path";
  ExpectLaunchFailure(options,
                      "Cannot start the browser: no-such-browser-on-the-path does not exist or is "
                      "not executable (install the Debian package chromium)");
  EXPECT_EQ(ProfileDirectories(), before);
}

TEST_F(ChromiumWebControlTest, ExecutableComesFromTheEnvironmentWhenNotGiven) {
  ::setenv("WEVLIN_CHROMIUM", "/nonexistent/from-environment", 1);
  ExpectLaunchFailure(ChromiumOptions(),
                      "Cannot start the browser: /nonexistent/from-environment does not exist or "
                      "is not executable (install the Debian package chromium)");
  ::unsetenv("WEVLIN_CHROMIUM");
}

TEST_F(ChromiumWebControlTest, BrowserThatExitsDuringStartUpIsReported) {
  const std::vector<std::string> before = ProfileDirectories();
  ChromiumOptions options;
  options.executable = "/bin/false";
  ExpectLaunchFailure(options, "The browser exited during start-up (exit code 1)");
  EXPECT_EQ(ProfileDirectories(), before);
}

TEST_F(ChromiumWebControlTest, BrowserThatNeverAnswersIsGivenUpInTime) {
  const std::string script =
      std::string(WEVLIN_SOURCE_DIR) + "/tests/e2e/support/silent-browser.sh";
  const std::vector<long> sleepersBefore = ProcessesRunning("sleep 600");
  const std::vector<std::string> before = ProfileDirectories();
  ChromiumOptions options;
  options.executable = script;
  options.startTimeout = 1000ms;
  const auto start = std::chrono::steady_clock::now();
  ExpectLaunchFailure(options, "The browser did not start within 1000 ms");
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
  EXPECT_EQ(ProcessesRunning("sleep 600"), sleepersBefore);
  EXPECT_EQ(ProfileDirectories(), before);
}

TEST_F(ChromiumWebControlTest, LoadsAreReportedOnTheApplicationThreadByPumping) {
  Start();
  // The control's own about:blank is not a load of the application's.
  EXPECT_FALSE(control_->RunUntil([&] { return !observer_.threads.empty(); }, 300ms));

  control_->Navigate(PageFiles::Url("plain.html"));
  std::this_thread::sleep_for(500ms);
  EXPECT_TRUE(observer_.threads.empty()) << "a load was reported without pumping";
  ASSERT_TRUE(control_->RunUntil([&] { return observer_.threads.size() == 1; }, kWait));
  EXPECT_EQ(observer_.threads[0], std::this_thread::get_id());
  EXPECT_EQ(Eval("document.title"), "Plain page");

  Open("handshake.html");
  EXPECT_EQ(observer_.threads.size(), 2u);
  EXPECT_EQ(Eval("document.title"), "wevlin end-to-end page");
}

TEST_F(ChromiumWebControlTest, ObserversAreToldOnceEachAndCanBeRemoved) {
  Start();
  RecordingLoadObserver second;
  control_->AddLoadObserver(&second);
  control_->AddLoadObserver(&second);
  Open("plain.html");
  EXPECT_EQ(second.threads.size(), 1u);

  // An observer removed by an earlier one during a delivery is not told.
  observer_.action = [&] { control_->RemoveLoadObserver(&second); };
  Open("plain.html");
  EXPECT_EQ(second.threads.size(), 1u);

  observer_.action = nullptr;
  Open("plain.html");
  EXPECT_EQ(second.threads.size(), 1u);
  EXPECT_EQ(observer_.threads.size(), 3u);
}

TEST_F(ChromiumWebControlTest, PumpingInsideALoadObserverDeliversNothing) {
  Start();
  HostAPI api(nullptr);
  control_->SetHostAPI(&api);
  std::vector<std::string> order;
  observer_.action = [&] {
    order.push_back("observer starts");
    // The page calls the host while the load is being delivered; the call
    // reaches the control's queue while the observer runs.
    Eval("globalThis.answer = ''; wevlinHost.tavoHostPing().then(v => { answer = v; }); ''");
    std::this_thread::sleep_for(300ms);
    order.push_back("nested pump took " + std::to_string(control_->PumpEvents()));
    order.push_back("observer ends, answer '" + Eval("answer") + "'");
  };
  control_->Navigate(PageFiles::Url("plain.html"));
  ASSERT_TRUE(control_->RunUntil([&] { return !observer_.threads.empty(); }, kWait));
  observer_.action = nullptr;
  order.push_back("after the load, answer '" + Eval("answer") + "'");
  // The next pump serves the call; its answer is in the page before the
  // next script runs there.
  const std::size_t taken = control_->PumpEvents();
  order.push_back("next pump took at least one: " + std::string(taken >= 1 ? "yes" : "no"));
  order.push_back("then answer '" + Eval("answer") + "'");
  EXPECT_EQ(order,
            (std::vector<std::string>{"observer starts", "nested pump took 0",
                                      "observer ends, answer ''", "after the load, answer ''",
                                      "next pump took at least one: yes", "then answer 'Pong'"}));
  control_->SetHostAPI(nullptr);
}

TEST_F(ChromiumWebControlTest, FailingObserverIsLoggedAndTheOthersAreStillTold) {
  Start();
  RecordingLoadObserver second;
  observer_.action = [] { throw std::runtime_error("observer broke"); };
  control_->AddLoadObserver(&second);
  std::string log;
  {
    StdoutCapture capture;
    control_->Navigate(PageFiles::Url("plain.html"));
    control_->RunUntil([&] { return second.threads.size() == 1; }, kWait);
    log = capture.Text();
  }
  EXPECT_EQ(second.threads.size(), 1u);
  EXPECT_EQ(log, "ChromiumWebControl: a load observer failed: observer broke\n");
}

TEST_F(ChromiumWebControlTest, FailedNavigationEndsInALoadAndIsLogged) {
  Start();
  const std::string url = PageFiles::Url("missing.html");
  const std::string expected =
      "ChromiumWebControl: navigation to " + url + " failed: net::ERR_FILE_NOT_FOUND\n";
  bool reported = false;
  std::string log;
  {
    StdoutCapture capture;
    control_->Navigate(url);
    reported = control_->RunUntil(
        [&] { return observer_.threads.size() == 1 && capture.Text() == expected; }, kWait);
    log = capture.Text();
  }
  EXPECT_TRUE(reported) << observer_.threads.size() << " loads, log: " << log;
}

TEST_F(ChromiumWebControlTest, InvalidUrlIsLogged) {
  Start();
  const std::string expected =
      "ChromiumWebControl: navigation to not a url failed: Cannot navigate to invalid URL\n";
  bool logged = false;
  std::string log;
  {
    StdoutCapture capture;
    control_->Navigate("not a url");
    logged = control_->RunUntil([&] { return capture.Text() == expected; }, kWait);
    log = capture.Text();
  }
  EXPECT_TRUE(logged) << log;
}

TEST_F(ChromiumWebControlTest, CrashedPageFailsAtOnceUntilNavigatedAgain) {
  ChromiumOptions options;
  options.commandTimeout = 20s;
  Start(options);
  Open("plain.html");
  const std::string crashed = "ChromiumWebControl: the page's renderer process crashed\n";
  bool logged = false;
  std::string log;
  {
    StdoutCapture capture;
    control_->Navigate("chrome://crash");
    logged = control_->RunUntil([&] { return capture.Text().find(crashed) != std::string::npos; },
                                kWait);
    log = capture.Text();
  }
  ASSERT_TRUE(logged) << log;

  const auto start = std::chrono::steady_clock::now();
  const ScriptException exception = Failure("6 * 7");
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
  EXPECT_EQ(exception.message, "The page's renderer process crashed");
  EXPECT_EQ(exception.details, "");
  try {
    control_->SaveScreenshot(control_->ProfileDirectory() + "/shot.png");
    ADD_FAILURE() << "no error";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::ProtocolError);
    EXPECT_EQ(std::string(error.what()), "The page's renderer process crashed");
  }

  Open("plain.html");
  EXPECT_EQ(Eval("document.title"), "Plain page");
}

TEST_F(ChromiumWebControlTest, ScriptValuesComeBackAsText) {
  Start();
  Open("plain.html");
  EXPECT_EQ(Eval("'text'"), "text");
  EXPECT_EQ(Eval(""), "");
  EXPECT_EQ(Eval("undefined"), "");
  EXPECT_EQ(Eval("null"), "");
  EXPECT_EQ(Eval("6 * 7"), "42");
  EXPECT_EQ(Eval("1.5"), "1.5");
  EXPECT_EQ(Eval("1e21"), "1e+21");
  EXPECT_EQ(Eval("-0"), "0");
  EXPECT_EQ(Eval("0 / 0"), "NaN");
  EXPECT_EQ(Eval("-1 / 0"), "-Infinity");
  EXPECT_EQ(Eval("true"), "true");
  EXPECT_EQ(Eval("10n ** 20n"), "100000000000000000000");
  EXPECT_EQ(Eval("(function f() {})"), "");
  EXPECT_EQ(Eval("var counter = 1; counter += 1; counter"), "2");
  EXPECT_EQ(Eval("document.getElementById('greeting').textContent"), "Grüße aus der Seite");

  // Objects and arrays: the JSON text of the browser's copy, keys in the
  // page's order, numbers as JavaScript writes them.
  EXPECT_EQ(Eval("({b: [1, 'x', null, 3e-7], a: {c: true, u: undefined}})"),
            "{\"b\":[1,\"x\",null,3e-7],\"a\":{\"c\":true}}");
  EXPECT_EQ(Eval("({zebra: 1, apple: 2, 2: 'two', 1: 'one', mango: 3})"),
            "{\"1\":\"one\",\"2\":\"two\",\"zebra\":1,\"apple\":2,\"mango\":3}");
  EXPECT_EQ(Eval("({w: 0.000001, v: 1e-7, y: 1e16, x: 1e21, z: -0, n: -2147483649})"),
            "{\"w\":0.000001,\"v\":1e-7,\"y\":10000000000000000,\"x\":1e+21,\"z\":0,"
            "\"n\":-2147483649}");
  EXPECT_EQ(Eval("({n: NaN, i: -Infinity})"), "{\"n\":null,\"i\":null}");
  EXPECT_EQ(Eval("[]"), "[]");
  EXPECT_EQ(Eval("[undefined, , 'Grüße \\n \"q\"']"), "[null,null,\"Grüße \\n \\\"q\\\"\"]");
  // The copy takes own enumerable properties and calls no toJSON.
  EXPECT_EQ(Eval("new Date(0)"), "{}");
  EXPECT_EQ(Eval("Promise.resolve(1)"), "{}");
  EXPECT_EQ(Eval("new Map([[1, 2]])"), "{}");
  EXPECT_EQ(Eval("document.body"), "{}");
  EXPECT_EQ(Eval("({f() {}, n: 1})"), "{\"f\":{},\"n\":1}");
  EXPECT_EQ(Eval("({toJSON() { return 5; }})"), "{\"toJSON\":{}}");
}

TEST_F(ChromiumWebControlTest, ValuesTheBrowserCannotCopyFailClearly) {
  Start();
  Open("plain.html");
  const std::string details =
      "The script ran, but its value is not plain data: return one without cycles or symbols, "
      "and without BigInts inside objects";
  struct Case {
    std::string script;
    std::string message;
  };
  const std::vector<Case> cases = {
      {"globalThis.ran = (globalThis.ran || 0) + 1; const circle = {}; circle.self = circle; "
       "circle",
       "The browser cannot copy the script's value (Object reference chain is too long)"},
      {"ran += 1; window",
       "The browser cannot copy the script's value (Object reference chain is too long)"},
      {"ran += 1; Symbol('s')",
       "The browser cannot copy the script's value (Object couldn't be returned by value)"},
      {"ran += 1; ({s: Symbol('s')})",
       "The browser cannot copy the script's value (Object couldn't be returned by value)"},
      {"ran += 1; [1n]",
       "The browser cannot copy the script's value (Object couldn't be returned by value)"},
  };
  for (const Case& c : cases) {
    const auto start = std::chrono::steady_clock::now();
    const ScriptException exception = Failure(c.script);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << c.script;
    EXPECT_EQ(exception.message, c.message) << c.script;
    EXPECT_EQ(exception.details, details) << c.script;
  }
  // Each script ran, and the page goes on.
  EXPECT_EQ(Eval("ran"), "5");
  EXPECT_EQ(Eval("6 * 7"), "42");
}

TEST_F(ChromiumWebControlTest, ScriptFailuresTellWhatAndWhere) {
  Start();
  Open("plain.html");
  struct Case {
    std::string script;
    std::string message;
    std::string details;
  };
  const std::vector<Case> cases = {
      {"nope()", "ReferenceError: nope is not defined", "line 1, column 1: nope()"},
      {"1 +\n+)", "SyntaxError: Unexpected token ')'", "line 2, column 2: +)"},
      {"let ok = 1;\r\nthrow 'plain text'", "plain text", "line 2, column 1: throw 'plain text'"},
      {"throw 42", "42", "line 1, column 1: throw 42"},
      {"throw new Error('two\\nlines')", "Error: two\nlines",
       "line 1, column 1: throw new Error('two\\nlines')"},
      {"failInPageFile()", "TypeError: failed in the page file",
       "line 8, column 3 of " + PageFiles::Url("plain.js")},
      {"tavoInterop_WebMethod('a\nb','c');", "SyntaxError: Invalid or unexpected token",
       "line 1, column 23: tavoInterop_WebMethod('a"},
  };
  for (const Case& c : cases) {
    const ScriptException exception = Failure(c.script);
    EXPECT_EQ(exception.message, c.message) << c.script;
    EXPECT_EQ(exception.details, c.details) << c.script;
  }

  // The page goes on after a failure.
  EXPECT_EQ(Eval("6 * 7"), "42");
}

TEST_F(ChromiumWebControlTest, TextIsUtf8AndBadBytesBecomeReplacementCharacters) {
  Start();
  Open("plain.html");
  const std::string codePoints = "Array.from(%s, c => c.codePointAt(0).toString(16)).join(' ')";
  const auto inspect = [&](const std::string& literal) {
    std::string script = codePoints;
    script.replace(script.find("%s"), 2, literal);
    return Eval(script);
  };
  EXPECT_EQ(Eval("'Grüße 日本 😀'"), "Grüße 日本 😀");
  EXPECT_EQ(inspect("'Grüße 😀'"), "47 72 fc df 65 20 1f600");
  // Each maximal ill-formed sequence becomes one U+FFFD, as a browser reads it.
  const std::string badByte = std::string("'a\xff") + "b'";
  EXPECT_EQ(Eval(badByte), "a" + kReplacement + "b");
  EXPECT_EQ(inspect(badByte), "61 fffd 62");
  EXPECT_EQ(inspect("'\xe6\x97'"), "fffd");
  EXPECT_EQ(inspect("'\xc0\xaf'"), "fffd fffd");
  EXPECT_EQ(inspect("'\xed\xa0\x80'"), "fffd fffd fffd");
  EXPECT_EQ(inspect("'\xf4\x90\x80\x80'"), "fffd fffd fffd fffd");
  // Lone surrogates of the page arrive as U+FFFD; pairs as their character.
  EXPECT_EQ(Eval("'x\\ud800y'"), "x" + kReplacement + "y");
  EXPECT_EQ(Eval("'\\udc00'"), kReplacement);
  EXPECT_EQ(Eval("'\\ud83d\\ude00'"), "😀");
  EXPECT_EQ(Eval("({s: 'a\\ud800', t: '\\ud83d\\ude00'})"),
            "{\"s\":\"a" + kReplacement + "\",\"t\":\"😀\"}");
}

TEST_F(ChromiumWebControlTest, ScreenshotIsAPngOfTheViewport) {
  ChromiumOptions options;
  options.windowWidth = 640;
  options.windowHeight = 480;
  Start(options);
  Open("plain.html");
  const std::string path = control_->ProfileDirectory() + "/../wevlin-e2e-shot.png";
  control_->SaveScreenshot(path);
  std::ifstream file(path, std::ios::binary);
  const std::string png((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  std::filesystem::remove(path);
  ASSERT_GT(png.size(), 24u);
  EXPECT_EQ(png.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
  EXPECT_EQ(png.substr(12, 4), "IHDR");
  const auto number = [&](std::size_t at) {
    return (static_cast<unsigned char>(png[at]) << 24) |
           (static_cast<unsigned char>(png[at + 1]) << 16) |
           (static_cast<unsigned char>(png[at + 2]) << 8) | static_cast<unsigned char>(png[at + 3]);
  };
  EXPECT_EQ(number(16), 640u);
  EXPECT_EQ(number(20), 480u);
}

TEST_F(ChromiumWebControlTest, ScreenshotToAnUnwritablePathThrows) {
  Start();
  Open("plain.html");
  try {
    control_->SaveScreenshot("/nonexistent-directory/shot.png");
    ADD_FAILURE() << "no error";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::FileError);
    EXPECT_EQ(std::string(error.what()),
              "Cannot write the screenshot to /nonexistent-directory/shot.png");
  }
}

TEST_F(ChromiumWebControlTest, ScriptThatRunsTooLongIsStopped) {
  ChromiumOptions options;
  options.commandTimeout = 1500ms;
  Start(options);
  Open("plain.html");
  const ScriptException exception = Failure("while (true) {}");
  EXPECT_EQ(exception.message, "The browser did not answer Runtime.evaluate within 1500 ms");
  EXPECT_EQ(exception.details, "The script was stopped.");
  EXPECT_EQ(Eval("6 * 7"), "42");
}

TEST_F(ChromiumWebControlTest, KilledBrowserGivesClearErrors) {
  Start();
  Open("plain.html");
  ::kill(static_cast<pid_t>(control_->BrowserProcessId()), SIGKILL);
  bool ran = true;
  std::string log;
  const auto start = std::chrono::steady_clock::now();
  {
    StdoutCapture capture;
    ran = control_->RunUntil([] { return false; }, kWait);
    log = capture.Text();
  }
  EXPECT_FALSE(ran);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 15s);
  EXPECT_EQ(log, "ChromiumWebControl: The browser exited (killed by signal 9)\n");
  EXPECT_FALSE(control_->IsBrowserRunning());

  const ScriptException exception = Failure("6 * 7");
  EXPECT_EQ(exception.message, "The browser exited (killed by signal 9)");
  EXPECT_EQ(exception.details, "");
  try {
    control_->Navigate(PageFiles::Url("plain.html"));
    ADD_FAILURE() << "no error";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::Exited);
    EXPECT_EQ(std::string(error.what()), "The browser exited (killed by signal 9)");
  }
  try {
    control_->SaveScreenshot(control_->ProfileDirectory() + "/shot.png");
    ADD_FAILURE() << "no error";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(std::string(error.what()), "The browser exited (killed by signal 9)");
  }
}

TEST_F(ChromiumWebControlTest, ScriptInFlightFailsWhenTheBrowserDies) {
  Start();
  Open("plain.html");
  const pid_t pid = static_cast<pid_t>(control_->BrowserProcessId());
  std::thread killer([pid] {
    std::this_thread::sleep_for(500ms);
    ::kill(pid, SIGKILL);
  });
  const ScriptException exception = Failure("while (true) {}");
  killer.join();
  EXPECT_EQ(exception.message, "The browser exited (killed by signal 9)");
  EXPECT_EQ(exception.details, "");
}

TEST_F(ChromiumWebControlTest, BrowserThatStopsAnsweringTimesOut) {
  ChromiumOptions options;
  options.commandTimeout = 1000ms;
  Start(options);
  Open("plain.html");
  ::kill(static_cast<pid_t>(control_->BrowserProcessId()), SIGSTOP);
  const ScriptException exception = Failure("6 * 7");
  EXPECT_EQ(exception.message, "The browser did not answer Runtime.evaluate within 1000 ms");
  try {
    control_->SaveScreenshot(control_->ProfileDirectory() + "/shot.png");
    ADD_FAILURE() << "no error";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::NotAnswering);
    EXPECT_EQ(std::string(error.what()),
              "The browser did not answer Page.captureScreenshot within 1000 ms");
  }
  // The destructor (in TearDown) kills the stopped browser without waiting
  // for it to close by itself longer than the close time-out.
  const auto start = std::chrono::steady_clock::now();
  TearDown();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(ChromiumWebControlTest, ShimDefinesTheHostObjectBeforePageScripts) {
  Start();
  Open("plain.html");
  EXPECT_EQ(Eval("hostSeenAtStart"), "object");
  EXPECT_EQ(Eval("Object.keys(wevlinHost).join()"),
            "tavoHostMethod,tavoHostEvent,tavoHostPing,tavoHost_WebSideServiceListUpdate,"
            "tavoHost_WebSideStartHandShake");
  EXPECT_EQ(Eval("Object.isFrozen(wevlinHost)"), "true");
  EXPECT_EQ(Eval("typeof globalThis.__wevlinHostBinding"), "undefined");
  EXPECT_EQ(Eval("wevlinHost.tavoHostPing() instanceof Promise"), "true");
}

TEST_F(ChromiumWebControlTest, PageCallsWithoutHostApiAreRejected) {
  Start();
  Open("plain.html");
  EXPECT_EQ(Settle("wevlinHost.tavoHostPing()"), "rejected: No HostAPI is set on the web control");
}

TEST_F(ChromiumWebControlTest, PageCallsAreServedOnlyWhenEventsArePumped) {
  Start();
  HostAPI api(nullptr);
  control_->SetHostAPI(&api);
  EXPECT_EQ(control_->GetHostAPI(), &api);
  Open("plain.html");
  Eval("globalThis.answer = ''; wevlinHost.tavoHostPing().then(v => { answer = v; }); ''");
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(Eval("answer"), "") << "the call was served without pumping";
  EXPECT_GE(control_->PumpEvents(), 1u);
  EXPECT_TRUE(control_->RunUntil([&] { return Eval("answer") != ""; }, kWait));
  EXPECT_EQ(Eval("answer"), "Pong");
  EXPECT_EQ(Settle("wevlinHost.tavoHost_WebSideStartHandShake()"), "resolved: ");
  control_->SetHostAPI(nullptr);
}

TEST_F(ChromiumWebControlTest, ConsoleMessagesGoToTheLogWhenAskedFor) {
  ChromiumOptions options;
  options.logConsoleMessages = true;
  Start(options);
  Open("plain.html");
  const std::string expected = "console.log: hello 42 Object\nconsole.error: Grüße\n";
  bool logged = false;
  std::string log;
  {
    StdoutCapture capture;
    Eval("console.log('hello', 42, {a: 1}); console.error('Grüße'); ''");
    logged = control_->RunUntil([&] { return capture.Text() == expected; }, kWait);
    log = capture.Text();
  }
  EXPECT_TRUE(logged) << log;
}

TEST_F(ChromiumWebControlTest, ProtocolTraceShowsEveryMessage) {
  ChromiumOptions options;
  options.traceProtocol = true;
  Start(options);
  Open("plain.html");
  std::string value;
  std::string log;
  {
    StdoutCapture capture;
    value = Eval("6 * 7");
    log = capture.Text();
  }
  EXPECT_EQ(value, "42");
  const std::regex trace(
      "devtools >> \\{\"id\":[0-9]+,\"method\":\"Runtime.evaluate\",\"sessionId\":\"[0-9A-F]+\","
      "\"params\":\\{\"expression\":\"6 \\* 7\",\"objectGroup\":\"wevlin-script\","
      "\"returnByValue\":true,\"awaitPromise\":false,\"contextId\":[0-9]+\\}\\}\n"
      "devtools << \\{\"id\":[0-9]+,\"result\":\\{\"result\":\\{\"type\":\"number\","
      "\"value\":42,\"description\":\"42\"\\}\\},\"sessionId\":\"[0-9A-F]+\"\\}\n");
  EXPECT_TRUE(std::regex_match(log, trace)) << log;

  // What a failed script threw is held in the page until it is released.
  {
    StdoutCapture capture;
    Failure("throw {thrown: 1}");
    log = capture.Text();
  }
  const std::regex release(
      "devtools >> \\{\"id\":[0-9]+,\"method\":\"Runtime.releaseObjectGroup\",\"params\":\\{"
      "\"objectGroup\":\"wevlin-script\"\\},\"sessionId\":\"[0-9A-F]+\"\\}\n");
  EXPECT_TRUE(std::regex_search(log, release)) << log;
}

}  // namespace
