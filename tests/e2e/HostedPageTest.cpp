// A page that uses the page-side library, hosted by a HostControlInstance on
// a real browser: the handshake and its content states, calls both ways,
// errors both ways, and what the texts look like when they arrive.

#include <signal.h>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/BrowserFixture.h"
#include "support/CountingService.h"
#include "support/PageFiles.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::BaseServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IWebControl;
using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::ChromiumError;
using ScriptException = IWebControl::ScriptException;
using wevlin_test::CountingService;
using wevlin_test::ServiceCall;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;
using namespace std::chrono_literals;
using wevlin_e2e::Engine;

constexpr char kVersion[] = "_2014_07";
constexpr char kGreeter[] = "tavo.e2e.Greeter.host";

class HostedPageTest : public wevlin_e2e::BrowserFixture {
 protected:
  // Registers the host service tavo.e2e.Greeter.host, which records its
  // calls in probe_ and answers "hello from the host".
  CountingService* AddGreeter() {
    auto* greeter = new CountingService(kGreeter, kVersion, &probe_);
    greeter->SetAnswer("hello from the host");
    RegisterService(greeter);
    return greeter;
  }

  // Returns the outcome of a call the page made successfully.
  static Json Resolved(const Json& value) {
    return Json{{"done", true}, {"ok", true}, {"value", value}};
  }

  // Returns the outcome of a call the host answered with the exception
  // record of `name` and `message` (whose JSON text is `record`).
  static Json Rejected(const std::string& name, const std::string& message,
                       const std::string& record) {
    return Json{
        {"done", true}, {"ok", false}, {"name", name}, {"message", message}, {"record", record}};
  }

  // Calls method `fqn` of the page with `payload`.
  std::string CallPage(const std::string& fqn, const std::string& payload) {
    BaseServiceDescriptor descriptor(fqn, kVersion);
    return instance_->InvokeWebMethod(&descriptor, payload);
  }

  // Returns the code points of what page method tavo.e2e.Inspect.client
  // received for `payload`.
  std::string Inspect(const std::string& payload) {
    return CallPage("tavo.e2e.Inspect.client", payload);
  }

  ServiceProbe probe_;
};

TEST_F(HostedPageTest, HandshakeGoesThroughEveryStateToLoggedIn) {
  bool loggedIn = false;
  std::string log;
  {
    StdoutCapture capture;
    Launch("handshake.html");
    loggedIn = WaitForState(HostContentState::LoggedIn);
    log = capture.Text();
  }
  ASSERT_TRUE(loggedIn) << HostControlInstance::NameOfState(instance_->GetContentState());
  EXPECT_EQ(log, "");
  EXPECT_EQ(listener_->States(), (std::vector<std::string>{"Navigating", "Waiting", "Initializing",
                                                           "LoadedCanTalk", "LoggedIn"}));
  for (const std::thread::id& thread : listener_->Threads()) {
    EXPECT_EQ(thread, std::this_thread::get_id());
  }
  EXPECT_EQ(instance_->GetWebSideVersion(), "e2e-page-1");
  EXPECT_EQ(listener_->Count("WebSideVersion"), 1);

  std::vector<std::string> pageServices;
  const auto* known = instance_->GetKnownWebSideServices();
  for (int i = 0; i < known->GetSize(); ++i) {
    pageServices.push_back(known->GetAt(i)->GetFQN() + " " + known->GetAt(i)->GetSvcVersion());
  }
  EXPECT_EQ(pageServices, (std::vector<std::string>{"tavo.e2e.Echo.client _2014_07",
                                                    "tavo.e2e.Inspect.client _2014_07",
                                                    "tavo.e2e.Failing.client _2014_07"}));

  EXPECT_EQ(Eval("e2e.page.hostVersion"), "0.9");
  EXPECT_EQ(Eval("JSON.stringify(e2e.page.hostServices())"),
            "[{\"fqn\":\"tavo.wevlin.infrastructure.services.startup.StartupNotification.host\","
            "\"version\":\"_2014_02\"}]");
  EXPECT_TRUE(control_->RunUntil(
      [&] {
        return Eval("e2e.milestones()") ==
               "[\"pinged by 0.9\",\"ready\",\"handshake started\",\"startup notification sent\"]";
      },
      kWait))
      << Eval("e2e.milestones()");
}

TEST_F(HostedPageTest, PageCallsAHostMethodAndAHostEvent) {
  AddGreeter();
  LaunchAndLogIn();
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', 'from the page')"),
            Resolved("hello from the host"));
  EXPECT_EQ(PageCall("e2e.raiseEvent('tavo.e2e.Greeter.host', '_2014_07', 'an event')"),
            Resolved(nullptr));
  ASSERT_EQ(probe_.calls.size(), 2u);
  EXPECT_EQ(probe_.calls[0].kind, ServiceCall::kMethod);
  EXPECT_EQ(probe_.calls[0].payload, "from the page");
  EXPECT_EQ(probe_.calls[0].instance, instance_.get());
  EXPECT_EQ(probe_.calls[1].kind, ServiceCall::kEvent);
  EXPECT_EQ(probe_.calls[1].payload, "an event");
  EXPECT_EQ(PageCall("e2e.ping()"), Resolved("0.9"));
}

TEST_F(HostedPageTest, HostServicesRunOnTheApplicationThread) {
  CountingService* greeter = AddGreeter();
  std::vector<std::thread::id> threads;
  greeter->SetMethodHandler([&](auto*, auto*, const std::string&) {
    threads.push_back(std::this_thread::get_id());
    return std::string("seen");
  });
  LaunchAndLogIn();
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', '')"),
            Resolved("seen"));
  EXPECT_EQ(threads, std::vector<std::thread::id>{std::this_thread::get_id()});
}

TEST_F(HostedPageTest, PageCallDuringAHostServiceIsServedAfterTheServiceReturns) {
  CountingService* greeter = AddGreeter();
  std::vector<std::string> order;
  greeter->SetMethodHandler([&](auto*, auto*, const std::string& payload) {
    order.push_back("greeter serves '" + payload + "'");
    return std::string("hello from the host");
  });
  auto* outer = new CountingService("tavo.e2e.Outer.host", kVersion, &probe_);
  std::string innerCall;
  outer->SetMethodHandler([&](auto*, auto*, const std::string& payload) {
    order.push_back("outer starts '" + payload + "'");
    // The page calls the greeter while this service waits for a script.
    innerCall = Eval("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', 'inner')");
    order.push_back("outer's script returned");
    // Time for the page's call to reach the control's queue.
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(Eval("e2e.done(" + innerCall + ")"), "false");
    order.push_back("nested pump took " + std::to_string(control_->PumpEvents()));
    order.push_back("outer ends");
    return std::string("outer done");
  });
  RegisterService(outer);
  LaunchAndLogIn();

  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Outer.host', '_2014_07', 'outer')"),
            Resolved("outer done"));
  ASSERT_FALSE(innerCall.empty());
  ASSERT_TRUE(
      control_->RunUntil([&] { return Eval("e2e.done(" + innerCall + ")") == "true"; }, kWait));
  EXPECT_EQ(Json::parse(Eval("e2e.outcome(" + innerCall + ")")), Resolved("hello from the host"));
  EXPECT_EQ(order, (std::vector<std::string>{"outer starts 'outer'", "outer's script returned",
                                             "nested pump took 0", "outer ends",
                                             "greeter serves 'inner'"}));
  ASSERT_EQ(probe_.calls.size(), 2u);
  EXPECT_EQ(probe_.calls[0].service, outer);
  EXPECT_EQ(probe_.calls[1].service, greeter);
}

TEST_F(HostedPageTest, MissingHostServiceGivesTheExactRecordInThePage) {
  LaunchAndLogIn();
  const std::string message =
      "No matching service descriptor found for: tavo.e2e.Missing.host ver: _2014_07";
  const std::string record =
      "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"" + message + "\"}}";
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Missing.host', '_2014_07', 'x')"),
            Rejected("std::invalid_argument", message, record));
  EXPECT_EQ(PageCall("e2e.raiseEvent('tavo.e2e.Missing.host', '_2014_07', 'x')"),
            Rejected("std::invalid_argument", message, record));
}

TEST_F(HostedPageTest, FailingHostServiceGivesItsRecordInThePage) {
  CountingService* greeter = AddGreeter();
  greeter->ThrowOnInvoke(std::runtime_error("disk \"C:/\" offline"));
  LaunchAndLogIn();
  const std::string record =
      "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"disk \\\"C:\\/\\\" "
      "offline\"}}";
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', 'x')"),
            Rejected("std::runtime_error", "disk \"C:/\" offline", record));
  EXPECT_EQ(PageCall("e2e.raiseEvent('tavo.e2e.Greeter.host', '_2014_07', 'x')"),
            Rejected("std::runtime_error", "disk \"C:/\" offline", record));
}

TEST_F(HostedPageTest, HostFailureOutsideTheProtocolRejectsThePageCall) {
  CountingService* greeter = AddGreeter();
  greeter->ThrowOnInvoke(ScriptException("nested script failed", "line 1"));
  LaunchAndLogIn();
  Json outcome;
  std::string log;
  {
    StdoutCapture capture;
    outcome = PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', 'x')");
    log = capture.Text();
  }
  EXPECT_EQ(outcome["ok"], false);
  EXPECT_EQ(outcome["name"], "Error");
  EXPECT_EQ(outcome["message"], "nested script failed");
  EXPECT_EQ(outcome["record"], nullptr);
  EXPECT_EQ(log,
            ControlName() + ": the page's call of tavoHostMethod failed: nested script failed\n");
}

TEST_F(HostedPageTest, HostCallsAPageMethodAndAPageEvent) {
  LaunchAndLogIn();
  EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "ping me"), "ping me");
  BaseServiceDescriptor echo("tavo.e2e.Echo.client", kVersion);
  instance_->InvokeWebEvent(&echo, "first");
  instance_->InvokeWebEvent(&echo, "second");
  EXPECT_EQ(Eval("e2e.events()"), "[\"first\",\"second\"]");
}

TEST_F(HostedPageTest, PageServiceFailuresBecomeRuntimeErrors) {
  LaunchAndLogIn();
  BaseServiceDescriptor failing("tavo.e2e.Failing.client", kVersion);
  try {
    instance_->InvokeWebMethod(&failing, "x");
    ADD_FAILURE() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "RangeError too far");
  }
  try {
    instance_->InvokeWebEvent(&failing, "x");
    ADD_FAILURE() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "RangeError too far");
  }
  BaseServiceDescriptor missing("tavo.e2e.Nothing.client", kVersion);
  try {
    instance_->InvokeWebMethod(&missing, "x");
    ADD_FAILURE() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()),
              "Error No web service registered for: tavo.e2e.Nothing.client ver: _2014_07");
  }
  EXPECT_EQ(instance_->GetContentState(), HostContentState::LoggedIn);
}

TEST_F(HostedPageTest, PageScriptErrorBecomesScriptException) {
  LaunchAndLogIn();
  ScriptException exception;
  std::string log;
  {
    StdoutCapture capture;
    try {
      CallPage("tavo.e2e.Echo.client", "two\nlines");
    } catch (const ScriptException& thrown) {
      exception = thrown;
    }
    log = capture.Text();
  }
  // Each engine words its errors its own way; WebKit names the document
  // where Chromium quotes the script.
  EXPECT_EQ(exception.message,
            ByEngine("SyntaxError: Invalid or unexpected token", "SyntaxError: Unexpected EOF"));
  EXPECT_EQ(exception.details,
            ByEngine("line 1, column 83: tavoInterop_WebMethod('{\"FQN\": "
                     "\"tavo.e2e.Echo.client\", \"SvcVersion\": \"_2014_07\"}','two",
                     "line 1 of " + wevlin_e2e::PageFiles::Url("handshake.html")));
  EXPECT_EQ(log, "Caught exception running tavoInterop_HostServiceListUpdate\n");
  try {
    Eval("e2e.noSuchFunction()");
    ADD_FAILURE() << "no error";
  } catch (const ScriptException& thrown) {
    EXPECT_EQ(thrown.message,
              ByEngine("TypeError: e2e.noSuchFunction is not a function",
                       "TypeError: e2e.noSuchFunction is not a function. (In "
                       "'e2e.noSuchFunction()', 'e2e.noSuchFunction' is undefined)"));
    EXPECT_EQ(thrown.details,
              ByEngine("line 1, column 5: e2e.noSuchFunction()",
                       "line 1, column 19 of " + wevlin_e2e::PageFiles::Url("handshake.html")));
  }
  EXPECT_EQ(instance_->GetContentState(), HostContentState::LoggedIn);
}

TEST_F(HostedPageTest, PayloadsFromHostToPageArriveAsTheQuotingLeavesThem) {
  LaunchAndLogIn();
  // A single quote is escaped for the script line and arrives intact.
  EXPECT_EQ(Inspect("it's"), "69 74 27 73");
  EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "it's"), "it's");
  // Double quotes need nothing.
  EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "say \"hi\""), "say \"hi\"");
  // A backslash is not escaped: the page's script reads it as an escape.
  EXPECT_EQ(Inspect("a\\b"), "61 8");
  EXPECT_EQ(Inspect("a\\\\b"), "61 5c 62");
  EXPECT_EQ(Inspect("a\\u0041"), "61 41");
  // Other characters, a tab among them, arrive as they are.
  EXPECT_EQ(Inspect("\t"), "9");
  EXPECT_EQ(Inspect("é日😀"), "e9 65e5 1f600");
  EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "Grüße, 日本 😀"), "Grüße, 日本 😀");
  // Bytes that are not UTF-8 arrive as U+FFFD.
  EXPECT_EQ(Inspect("a\xff"), "61 fffd");
  EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "a\xff"), "a\xEF\xBF\xBD");
  // A line break ends the script line: the call fails (see
  // PageScriptErrorBecomesScriptException).
}

TEST_F(HostedPageTest, PayloadsFromPageToHostArriveUnchanged) {
  AddGreeter();
  LaunchAndLogIn();
  const std::string tricky = "it's \"q\" back\\slash\nline\r\ttab é日😀 {\"Exception";
  EXPECT_EQ(
      PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', " + JsString(tricky) + ")"),
      Resolved("hello from the host"));
  EXPECT_EQ(
      PageCall("e2e.raiseEvent('tavo.e2e.Greeter.host', '_2014_07', " + JsString(tricky) + ")"),
      Resolved(nullptr));
  // A lone surrogate of the page arrives as U+FFFD.
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', 'x\\ud800y')"),
            Resolved("hello from the host"));
  ASSERT_EQ(probe_.calls.size(), 3u);
  EXPECT_EQ(probe_.calls[0].payload, tricky);
  EXPECT_EQ(probe_.calls[1].payload, tricky);
  EXPECT_EQ(probe_.calls[2].payload, "x\xEF\xBF\xBDy");
}

TEST_F(HostedPageTest, HostAnswersReachThePageUnchanged) {
  CountingService* greeter = AddGreeter();
  LaunchAndLogIn();
  const std::string answer = std::string("quote ' double \" backslash \\ slash / newline \n") +
                             "tab \t nul " + std::string(1, '\0') + " é日😀 \\u0041";
  greeter->SetAnswer(answer);
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', '')"),
            Resolved(answer));
  // Bytes that are not UTF-8 reach the page as U+FFFD.
  greeter->SetAnswer("ok\xff");
  EXPECT_EQ(PageCall("e2e.invokeMethod('tavo.e2e.Greeter.host', '_2014_07', '')"),
            Resolved("ok\xEF\xBF\xBD"));
  // An answer that looks like a record is passed as it is; the page library
  // reads it as one.
  greeter->SetAnswer("{\"Exception\": {\"name\": \"mine\", \"message\": \"not an error\"}}");
  EXPECT_EQ(PageCall("e2e.callBridge('tavoHostMethod', "
                     "'{\"FQN\": \"tavo.e2e.Greeter.host\", \"SvcVersion\": \"_2014_07\"}', '')"),
            Resolved("{\"Exception\": {\"name\": \"mine\", \"message\": \"not an error\"}}"));
}

TEST_F(HostedPageTest, BridgeTurnsArgumentsIntoTexts) {
  AddGreeter();
  LaunchAndLogIn();
  const std::string descriptor =
      "'{\"FQN\": \"tavo.e2e.Greeter.host\", \"SvcVersion\": \"_2014_07\"}'";
  EXPECT_EQ(PageCall("e2e.callBridge('tavoHostMethod', " + descriptor + ", 42)"),
            Resolved("hello from the host"));
  EXPECT_EQ(PageCall("e2e.callBridge('tavoHostMethod', " + descriptor + ", null)"),
            Resolved("hello from the host"));
  EXPECT_EQ(PageCall("e2e.callBridge('tavoHostMethod', " + descriptor + ")"),
            Resolved("hello from the host"));
  ASSERT_EQ(probe_.calls.size(), 3u);
  EXPECT_EQ(probe_.calls[0].payload, "42");
  EXPECT_EQ(probe_.calls[1].payload, "");
  EXPECT_EQ(probe_.calls[2].payload, "");
  EXPECT_EQ(PageCall("e2e.callBridge('tavoHost_WebSideServiceListUpdate', 'Add', '[]')"),
            Resolved("{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"unknown "
                     "action\"}}"));
}

TEST_F(HostedPageTest, ReloadedPageRunsTheHandshakeAgain) {
  LaunchAndLogIn();
  listener_->Clear();
  Eval("location.reload()");
  EXPECT_TRUE(control_->RunUntil([&] { return listener_->States().size() == 3; }, kWait));
  EXPECT_EQ(listener_->States(),
            (std::vector<std::string>{"Initializing", "LoadedCanTalk", "LoggedIn"}));
  EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "after the reload"), "after the reload");
}

TEST_F(HostedPageTest, KilledPageProcessMidSessionGivesClearErrors) {
  LaunchAndLogIn();
  // Chromium loses its whole browser; WebKitGTK only the page's web process,
  // and its next navigation starts a new one.
  const bool chromium = TheEngine() == Engine::Chromium;
  const std::string problem = chromium ? "The browser exited (killed by signal 9)"
                                       : "The page's web process ended (was terminated)";
  const std::string controlLine =
      chromium ? "ChromiumWebControl: The browser exited (killed by signal 9)\n"
               : "WebKitGtkWebControl: the page's web process ended (was terminated)\n";
  CrashPage();
  ScriptException exception;
  std::string callLog;
  std::string log;
  {
    StdoutCapture capture;
    // Let the control learn of the loss first, as it would before a later
    // call in an application.
    control_->RunUntil([&] { return !control_->IsBrowserRunning(); }, kWait);
    try {
      CallPage("tavo.e2e.Echo.client", "anyone there?");
    } catch (const ScriptException& thrown) {
      exception = thrown;
    }
    callLog = capture.Text();
    control_->RunUntil([] { return false; }, std::chrono::milliseconds(200));
    log = capture.Text();
  }
  EXPECT_FALSE(control_->IsBrowserRunning());
  EXPECT_EQ(exception.message, problem);
  EXPECT_EQ(callLog, controlLine + "Caught exception running tavoInterop_HostServiceListUpdate\n");
  EXPECT_EQ(log, callLog);
  if (chromium) {
    try {
      instance_->LaunchToTarget(HostManager::TheInstance()->GetTargetConfig("e2e"));
      ADD_FAILURE() << "no error";
    } catch (const ChromiumError& error) {
      EXPECT_EQ(error.kind(), ChromiumError::Kind::Exited);
      EXPECT_EQ(std::string(error.what()), problem);
    }
  } else {
    instance_->LaunchToTarget(HostManager::TheInstance()->GetTargetConfig("e2e"));
    EXPECT_TRUE(WaitForState(HostContentState::LoggedIn));
    EXPECT_TRUE(control_->IsBrowserRunning());
    EXPECT_EQ(CallPage("tavo.e2e.Echo.client", "back again"), "back again");
  }
  ShutDown();
}

}  // namespace
