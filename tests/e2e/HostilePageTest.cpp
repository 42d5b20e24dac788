// Pages that try to stall or swamp the host: dialogs, calls and scripts over
// the size limit, a script that never ends and a flood of calls. Each test
// checks that the host keeps working, with figures where the bound matters.
#include <chrono>
#include <fstream>
#include <iostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/BrowserFixture.h"
#include "support/CountingService.h"
#include "support/StdoutCapture.h"
#include "wevlin/webcontrols/PageDialog.h"

namespace wevlin_e2e {
namespace {

using namespace std::chrono_literals;
using Com::Velmora::TAVO::Wevlin::WebControls::PageDialog;
using Com::Velmora::TAVO::Wevlin::WebControls::PageDialogAnswer;
using wevlin_e2e::Engine;
using wevlin_test::CountingService;
using wevlin_test::StdoutCapture;
using ScriptException =
    Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl::ScriptException;

constexpr char kEcho[] = R"({"FQN": "tavo.e2e.Echo.host", "SvcVersion": "_2014_07"})";

// Returns this process's resident set in KiB, as the kernel counts it.
long ResidentKiB(const char* field = "VmRSS:") {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind(field, 0) == 0) return std::stol(line.substr(std::string(field).size()));
  }
  return -1;
}

class HostilePageTest : public BrowserFixture {
 protected:
  ControlSettings Settings() const override {
    ControlSettings options;
    options.maxCallBytes = 4096;
    options.scriptTimeout = 3s;
    options.dialogHandler = [this](const PageDialog& dialog) {
      dialogs_.push_back(dialog.type + ": " + dialog.message);
      PageDialogAnswer answer;
      answer.accept = dialog.type == "prompt" || dialog.type == "beforeunload";
      answer.promptText = "typed by the host";
      return answer;
    };
    return options;
  }

  void SetUp() override {
    BrowserFixture::SetUp();
    echo_ = new CountingService("tavo.e2e.Echo.host", "_2014_07");
    echo_->SetMethodHandler(
        [this](CountingService::Instance*, CountingService::Descriptor*,
               const std::string& payload) { return answer_.empty() ? payload : answer_; });
    RegisterService(echo_);
    Launch("plain.html");
    ASSERT_TRUE(WaitForState(HostContentState::Waiting));
  }

  // Starts a call of the echo service with `payloadExpression` in the page
  // and returns its outcome: the answer, or "rejected: <message>".
  std::string Call(const std::string& payloadExpression) {
    Eval("window.outcome = null; wevlinHost.tavoHostMethod(" + JsString(kEcho) + ", " +
         payloadExpression +
         ").then((a) => { window.outcome = a; }, (e) => { window.outcome = 'rejected: ' + "
         "e.message; }); 0");
    std::string outcome;
    control_->RunUntil(
        [&] {
          outcome = Eval("window.outcome");
          return !outcome.empty();
        },
        kWait);
    return outcome;
  }

  // Runs `script` and returns the ScriptException it gives ("" message when
  // it gives none).
  ScriptException Failure(const std::string& script) {
    try {
      control_->ExecuteScript(script);
    } catch (const ScriptException& error) {
      return error;
    }
    return ScriptException();
  }

  mutable std::vector<std::string> dialogs_;
  CountingService* echo_ = nullptr;  // owned by the host manager
  std::string answer_;
};

TEST_F(HostilePageTest, DialogsAreAnsweredAtOnceAndNeverStallTheHost) {
  std::string log;
  {
    StdoutCapture capture;
    EXPECT_EQ(Eval("alert('stop'); 'after the alert'"), "after the alert");
    EXPECT_EQ(Eval("String(confirm('sure?'))"), "false");
    EXPECT_EQ(Eval("prompt('name?', 'nobody')"), "typed by the host");
    control_->PumpEvents();
    log = capture.Text();
  }
  EXPECT_THAT(dialogs_, ::testing::ElementsAre("alert: stop", "confirm: sure?", "prompt: name?"));
  EXPECT_EQ(log, ControlName() + ": answered the page's alert dialog: dismissed\n" + ControlName() +
                     ": answered the page's confirm dialog: dismissed\n" + ControlName() +
                     ": answered the page's prompt dialog: accepted\n");
  // A dialog left open by a page callback does not block the next call.
  Eval("setTimeout(() => alert('later'), 0); 0");
  EXPECT_EQ(Call("'still here'"), "still here");
}

TEST_F(HostilePageTest, APageThatAsksToStayDoesNotHoldUpTheHostsNavigation) {
  Eval(
      "window.stayed = 'yes'; addEventListener('beforeunload', (e) => { e.preventDefault(); "
      "e.returnValue = 'stay'; }); 0");
  std::string log;
  {
    StdoutCapture capture;
    instance_->LaunchToTarget(HostManager::TheInstance()->GetTargetConfig("e2e"));
    EXPECT_TRUE(control_->RunUntil(
        [&] {
          return instance_->GetContentState() == HostContentState::Waiting &&
                 Eval("String(window.stayed)") == "undefined";
        },
        kWait));
    log = capture.Text();
  }
  // A browser asks only when the page has had a user's gesture; when it does
  // ask, the control answers at once, and the navigation goes on.
  const std::string line = ControlName() + ": answered the page's beforeunload dialog: accepted\n";
  if (dialogs_.empty()) {
    EXPECT_THAT(log, ::testing::Not(::testing::HasSubstr("dialog")));
  } else {
    EXPECT_THAT(dialogs_, ::testing::ElementsAre(::testing::StartsWith("beforeunload: ")));
    EXPECT_THAT(log, ::testing::HasSubstr(line));
  }
  EXPECT_EQ(Call("'after the navigation'"), "after the navigation");
}

TEST_F(HostilePageTest, AScriptOverTheLimitIsRefusedAndTheControlGoesOn) {
  const ScriptException error = Failure("'" + std::string(5000, 'x') + "'");
  EXPECT_EQ(error.message, "The script takes 5002 bytes, more than the limit of 4096");
  EXPECT_EQ(error.details, "The script was not run.");
  EXPECT_EQ(Eval("6 * 7"), "42");
}

TEST_F(HostilePageTest, ACallOverTheLimitIsRefusedInThePageAndNoServiceIsEntered) {
  // The descriptor takes 55 bytes: 4041 bytes of payload make 4096.
  EXPECT_EQ(Call("'x'.repeat(4042)"),
            "rejected: The call takes 4097 bytes, more than the limit of 4096");
  EXPECT_TRUE(echo_->Calls().empty());
  EXPECT_EQ(Call("'x'.repeat(4041)"), std::string(4041, 'x'));
}

TEST_F(HostilePageTest, AnAnswerOverTheLimitBecomesARecord) {
  answer_ = std::string(4097, 'y');
  EXPECT_EQ(Call("''"),
            R"({"Exception": {"name": "std::length_error", "message": "The answer takes 4097 )"
            R"(bytes, more than the limit of 4096"}})");
}

TEST_F(HostilePageTest, AScriptThatNeverEndsFailsAfterTheTimeOutAndIsStopped) {
  const auto start = std::chrono::steady_clock::now();
  const ScriptException error = Failure("for (;;) {}");
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(error.message, ByEngine("The browser did not answer Runtime.evaluate within 3000 ms",
                                    "The script did not finish within 3000 ms"));
  // Chromium stops the script; WebKit can stop it only with the page's web
  // process, and the next navigation starts a new one.
  EXPECT_EQ(error.details,
            ByEngine("The script was stopped.",
                     "The page's web process was ended to stop it; the next Navigate loads a "
                     "page again."));
  std::cout << "endless script failed after "
            << std::chrono::duration_cast<std::chrono::milliseconds>(took).count() << " ms\n";
  if (TheEngine() == Engine::WebKitGtk) {
    instance_->LaunchToTarget(HostManager::TheInstance()->GetTargetConfig("e2e"));
  }
  std::string value;
  control_->RunUntil(
      [&] {
        try {
          value = Eval("6 * 7");
        } catch (const ScriptException&) {
          value.clear();
        }
        return value == "42";
      },
      kWait);
  EXPECT_EQ(value, "42");
}

// The browser takes seconds to send big console messages; this page's script
// may take that long.
class HostileConsolePageTest : public HostilePageTest {
 protected:
  ControlSettings Settings() const override {
    ControlSettings options = HostilePageTest::Settings();
    options.scriptTimeout = 60s;
    return options;
  }
};

TEST_F(HostileConsolePageTest, BigConsoleMessagesCostTheHostNothingWhileConsoleLoggingIsOff) {
  // The kernel counts the peak resident set afresh from here.
  std::ofstream("/proc/self/clear_refs") << "5";
  const long before = ResidentKiB("VmRSS:");
  std::string log;
  {
    StdoutCapture capture;
    // Five messages of 10 MiB each (the browser takes a while to send them);
    // the reply to this script comes after them on the pipe, so they have
    // all gone by when it returns.
    try {
      EXPECT_EQ(Eval("const text = 'x'.repeat(10 * 1024 * 1024); "
                     "for (let i = 0; i < 5; i++) console.log(text); 'logged'"),
                "logged");
    } catch (const ScriptException& error) {
      ADD_FAILURE() << error.message << " (" << error.details << ")";
    }
    control_->PumpEvents();
    log = capture.Text();
  }
  const long peak = ResidentKiB("VmHWM:");
  std::cout << "50 MiB of console messages: the host's peak resident set grew by "
            << (peak - before) / 1024 << " MiB\n";
  EXPECT_EQ(log, "");
  // Chromium's messages are skipped unread as they stream by. WebKit keeps
  // the console in the page's web process; this process grows by one
  // message's size (10 MiB) of WebKit's own, however many there are.
  EXPECT_LT(peak - before, (TheEngine() == Engine::Chromium ? 10 : 16) * 1024);
}

TEST_F(HostilePageTest, AFloodOfUnawaitedCallsLeavesTheHostAnsweringInBoundedMemory) {
  const long before = ResidentKiB();
  Eval(
      "window.settled = 0; for (let i = 0; i < 300000; i++) { "
      "wevlinHost.tavoHostPing().then(() => { window.settled++; }); } 0");
  // The host's own call into the page is answered while the flood drains.
  const auto start = std::chrono::steady_clock::now();
  control_->PumpEvents();
  EXPECT_EQ(Eval("6 * 7"), "42");
  const auto took = std::chrono::steady_clock::now() - start;
  // The flood drains at the pace of the round trips (all of it takes about
  // a minute here); a few seconds of it show whether the host grows.
  long peak = ResidentKiB();
  std::string settled;
  control_->RunUntil(
      [&] {
        peak = std::max(peak, ResidentKiB());
        settled = Eval("window.settled");
        return false;
      },
      5s);
  EXPECT_NE(settled, "0") << "the host answered none of the calls";
  std::cout << "host call during the flood: "
            << std::chrono::duration_cast<std::chrono::milliseconds>(took).count()
            << " ms; calls answered in 5 s: " << settled << "; resident set " << before / 1024
            << " MiB before, " << peak / 1024 << " MiB at most\n";
  EXPECT_LT(peak - before, 200 * 1024)
      << "the flood grew the host by " << (peak - before) / 1024 << " MiB";
}

// A page with the default limit of 16 MiB per call.
class HostileServiceListTest : public HostilePageTest {
 protected:
  ControlSettings Settings() const override {
    ControlSettings options = HostilePageTest::Settings();
    options.maxCallBytes = ControlSettings().maxCallBytes;
    options.scriptTimeout = 60s;
    return options;
  }

  // Has the page announce a list of `entries` services and returns the
  // outcome, printing what the call cost the host.
  std::string AnnounceServices(int entries) {
    Eval("window.list = JSON.stringify(Array.from({length: " + std::to_string(entries) +
         "}, (_, i) => ({FQN: 'tavo.flood.S' + i, SvcVersion: '_2014_07'}))); 0");
    const std::string bytes = Eval("window.list.length");
    listBytes_ = std::stol(bytes);
    const long before = ResidentKiB();
    const auto start = std::chrono::steady_clock::now();
    Eval(
        "window.outcome = null; wevlinHost.tavoHost_WebSideServiceListUpdate('Replace', "
        "window.list).then((a) => { window.outcome = 'answered: ' + a; }, (e) => { "
        "window.outcome = 'rejected: ' + e.message; }); window.list = null; 0");
    long peak = before;
    std::string outcome;
    control_->RunUntil(
        [&] {
          peak = std::max(peak, ResidentKiB());
          outcome = Eval("String(window.outcome)");
          return outcome != "null";
        },
        60s);
    const auto took = std::chrono::steady_clock::now() - start;
    std::cout << "[ figures  ] service list of " << entries << " entries (" << bytes
              << " bytes): " << std::chrono::duration_cast<std::chrono::milliseconds>(took).count()
              << " ms; resident set " << before / 1024 << " MiB before, " << peak / 1024
              << " MiB at most, " << ResidentKiB() / 1024 << " MiB after\n";
    keptKiB_ = ResidentKiB() - before;
    return outcome;
  }

  long keptKiB_ = 0;
  long listBytes_ = 0;
};

TEST_F(HostileServiceListTest, AMillionEntryServiceListIsRefusedBeforeTheHostReadsIt) {
  const std::string outcome = AnnounceServices(1000000);
  // The call's texts: "Replace" and the list (ASCII: one byte a character).
  EXPECT_EQ(outcome, "rejected: The call takes " + std::to_string(listBytes_ + 7) +
                         " bytes, more than the limit of 16777216");
  EXPECT_LT(keptKiB_, 16 * 1024);
}

TEST_F(HostileServiceListTest, TheLargestServiceListWithinTheLimitIsServedInBoundedMemory) {
  // About 15 MiB of list text.
  EXPECT_EQ(AnnounceServices(300000), "answered: ");
  EXPECT_LT(keptKiB_, 400 * 1024) << "the list kept " << keptKiB_ / 1024 << " MiB of the host";
}

}  // namespace
}  // namespace wevlin_e2e
