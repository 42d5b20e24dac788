// The WebKitGTK web control in a real WebKitGTK view, in an offscreen GTK
// window. The pages come from a loopback test server; the program needs a
// display (CTest runs it under xvfb-run).
#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"

#include <gtk/gtk.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/CountingService.h"
#include "support/StaticSiteServer.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/testing/ScriptedPage.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageCaller.h"
#include "wevlin/webcontrols/PageDialog.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkError.h"
#include "wevlin/webcontrols/webkitgtk/WebKitGtkOptions.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using Com::Velmora::TAVO::Wevlin::WebControls::BridgePolicy;
using Com::Velmora::TAVO::Wevlin::WebControls::PageCaller;
using Com::Velmora::TAVO::Wevlin::WebControls::PageDialog;
using Com::Velmora::TAVO::Wevlin::WebControls::PageDialogAnswer;
using Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::WebKitGtkError;
using Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::WebKitGtkOptions;
using Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::WebKitGtkWebControl;
using wevlin_e2e::StaticSiteServer;
using wevlin_test::CountingService;
using ScriptException = interop::IWebControl::ScriptException;
using Json = nlohmann::json;
using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kWait = 30s;

constexpr char kDescriptor[] = R"({"FQN": "app.Echo.host", "SvcVersion": "1"})";

// The call of the echo service as a script expression.
std::string EchoCall(const std::string& payload) {
  return std::string("wevlinHost.tavoHostMethod('") + kDescriptor + "', '" + payload + "')";
}

// A message in the call format, posted straight to the view's handler.
constexpr char kDirectPost[] =
    "window.webkit.messageHandlers.wevlinHostCall.postMessage(JSON.stringify({id: 1, fn: "
    "'tavoHostMethod', args: ['{\"FQN\": \"app.Echo.host\", \"SvcVersion\": \"1\"}', 'direct']}))";

// Writes the test pages into a fresh folder and returns it.
std::string WritePages() {
  const std::filesystem::path root = std::filesystem::temp_directory_path() /
                                     ("wevlin-webkitgtk-test-" + std::to_string(::getpid()));
  std::filesystem::create_directories(root);
  const auto write = [&root](const std::string& name, const std::string& text) {
    std::ofstream(root / name) << text;
  };
  write("plain.html", "<!doctype html><html><body><p>plain</p></body></html>");
  // A frame that posts to the handler itself, and keeps what it got back.
  write("frame.html",
        "<!doctype html><html><body><iframe src=\"child.html\"></iframe></body></html>");
  write("child.html", std::string("<!doctype html><html><body><script>\n"
                                  "window.hasHost = typeof globalThis.wevlinHost;\n"
                                  "window.reply = '';\n") +
                          kDirectPost +
                          ".then((r) => { window.reply = r[0] + ' ' + atob(r[1]); },\n"
                          "      (e) => { window.reply = 'rejected ' + e; });\n"
                          "</script></body></html>");
  // A page with a frame of its own origin.
  write("framed.html",
        "<!doctype html><html><body><iframe src=\"plain.html\"></iframe></body></html>");
  // A page that calls the host while it loads.
  write("calls.html", "<!doctype html><html><body><script>\n" + EchoCall("at load") +
                          ";\n</script></body></html>");
  return root.string();
}

// Records the library's log lines; any thread.
class LogLines {
 public:
  LogLines() {
    previous_ = base::SetLogSink([this](const std::string& line) {
      std::lock_guard<std::mutex> lock(mutex_);
      lines_.push_back(line);
    });
  }
  ~LogLines() { base::SetLogSink(previous_); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  bool Has(const std::string& line) const {
    std::lock_guard<std::mutex> lock(mutex_);
    for (const std::string& seen : lines_) {
      if (seen == line) return true;
    }
    return false;
  }

  bool HasPrefix(const std::string& prefix) const {
    std::lock_guard<std::mutex> lock(mutex_);
    for (const std::string& seen : lines_) {
      if (seen.rfind(prefix, 0) == 0) return true;
    }
    return false;
  }

  std::string All() const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::string all;
    for (const std::string& seen : lines_) all += seen + "\n";
    return all;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
  base::LogSink previous_;
};

class CountingLoads : public interop::IWebControl::ILoadObserver {
 public:
  void OnLoadCompleted() override {
    ++count;
    if (action) action();
  }
  int count = 0;
  std::function<void()> action;
};

// One control per test in an offscreen window, a host API with one echo
// service behind it, and a test server for the pages.
class WebKitGtkWebControlTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    displayReady_ = gtk_init_check(nullptr, nullptr) != FALSE;
    root_ = new std::string(WritePages());
    server_ = new StaticSiteServer(*root_, *root_);
  }

  static void TearDownTestSuite() {
    delete server_;
    server_ = nullptr;
    std::filesystem::remove_all(*root_);
    delete root_;
    root_ = nullptr;
  }

  void SetUp() override {
    ASSERT_TRUE(displayReady_) << "GTK cannot open a display: run this program under xvfb-run";
    service_ = new CountingService("app.Echo.host", "1");
    service_->SetMethodHandler([this](CountingService::Instance*, CountingService::Descriptor*,
                                      const std::string& payload) {
      const PageCaller* caller = control_->CurrentCaller();
      callers_.push_back(caller == nullptr ? std::string("(none)")
                                           : caller->origin + " " + caller->url + " " +
                                                 (caller->topFrame ? "top" : "frame"));
      if (onCall_) onCall_();
      return "echo " + payload;
    });
    instance_.RegisterService(service_);
  }

  void TearDown() override {
    control_.reset();
    if (window_ != nullptr) gtk_widget_destroy(window_);
    window_ = nullptr;
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }

  void Start(WebKitGtkOptions options = WebKitGtkOptions()) {
    window_ = gtk_offscreen_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window_), 640, 480);
    control_ = std::make_unique<WebKitGtkWebControl>(std::move(options));
    gtk_container_add(GTK_CONTAINER(window_), control_->Widget());
    gtk_widget_show_all(window_);
    control_->SetHostAPI(&api_);
    control_->AddLoadObserver(&loads_);
  }

  // Navigates to `url` and waits for the load to be reported.
  void Open(const std::string& url) {
    const int before = loads_.count;
    control_->Navigate(url);
    ASSERT_TRUE(control_->RunUntil([&] { return loads_.count > before; }, kWait))
        << "no load of " << url;
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

  static bool displayReady_;
  static std::string* root_;
  static StaticSiteServer* server_;

  ScriptedPage page_;
  interop::HostControlInstance instance_{&page_};
  interop::HostAPI api_{&instance_};
  CountingService* service_ = nullptr;  // owned by instance_
  std::vector<std::string> callers_;
  std::function<void()> onCall_;
  CountingLoads loads_;
  GtkWidget* window_ = nullptr;
  std::unique_ptr<WebKitGtkWebControl> control_;
};

bool WebKitGtkWebControlTest::displayReady_ = false;
std::string* WebKitGtkWebControlTest::root_ = nullptr;
StaticSiteServer* WebKitGtkWebControlTest::server_ = nullptr;

TEST_F(WebKitGtkWebControlTest, ScriptValuesBecomeTextAsJavaScriptWritesThem) {
  Start();
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Eval("'abc'"), "abc");
  EXPECT_EQ(Eval("'\\u00e9\\u4e2d'"), "\xC3\xA9\xE4\xB8\xAD");
  EXPECT_EQ(Eval("'a\\u0000b'"), std::string("a\0b", 3));
  EXPECT_EQ(Eval("undefined"), "");
  EXPECT_EQ(Eval("null"), "");
  EXPECT_EQ(Eval("1.5"), "1.5");
  EXPECT_EQ(Eval("1e21"), "1e+21");
  EXPECT_EQ(Eval("-0"), "0");
  EXPECT_EQ(Eval("NaN"), "NaN");
  EXPECT_EQ(Eval("-Infinity"), "-Infinity");
  EXPECT_EQ(Eval("2 + 2"), "4");
  EXPECT_EQ(Eval("true"), "true");
  EXPECT_EQ(Eval("1 > 2"), "false");
  EXPECT_EQ(Eval("[1, 'x', null]"), R"([1,"x",null])");
  EXPECT_EQ(Json::parse(Eval("({b: [1, 'x', null], a: {c: true}})")),
            Json::parse(R"({"b": [1, "x", null], "a": {"c": true}})"));
  // The script ran, though its value stays in the page.
  EXPECT_EQ(Eval("globalThis.ran = 'yes'; (function () {})"), "");
  EXPECT_EQ(Eval("ran"), "yes");
  // A statement list gives its last value; a declaration stays for the next.
  EXPECT_EQ(Eval("var kept = 41; kept + 1"), "42");
  EXPECT_EQ(Eval("kept"), "41");
}

TEST_F(WebKitGtkWebControlTest, ScriptsRunBeforeTheFirstNavigation) {
  Start();
  EXPECT_EQ(Eval("6 * 7"), "42");
  EXPECT_EQ(control_->PumpEvents(), 0U);
  EXPECT_EQ(loads_.count, 0);
}

TEST_F(WebKitGtkWebControlTest, InvalidUtf8InAScriptBecomesReplacementCharacters) {
  Start();
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Eval("'a\xFF"
                 "b'"),
            "a\xEF\xBF\xBD"
            "b");
}

TEST_F(WebKitGtkWebControlTest, AThrownScriptGivesWhatWasThrownAndWhere) {
  Start();
  Open(server_->Url("/plain.html"));
  const ScriptException missing = Failure("nope");
  EXPECT_EQ(missing.message, "ReferenceError: Can't find variable: nope");
  EXPECT_EQ(missing.details, "line 1, column 5 of " + server_->Url("/plain.html"));
  const ScriptException thrown = Failure("\n\nthrow new TypeError('bad')");
  EXPECT_EQ(thrown.message, "TypeError: bad");
  EXPECT_EQ(thrown.details.rfind("line 3, column ", 0), 0U) << thrown.details;
  const ScriptException syntax = Failure("1 +");
  EXPECT_EQ(syntax.message.rfind("SyntaxError: ", 0), 0U) << syntax.message;
  EXPECT_EQ(syntax.details.rfind("line 1", 0), 0U) << syntax.details;
}

TEST_F(WebKitGtkWebControlTest, AScriptOverTheLimitIsNotRun) {
  WebKitGtkOptions options;
  options.maxCallBytes = 100;
  Start(options);
  Open(server_->Url("/plain.html"));
  const ScriptException failure = Failure("globalThis.big = '" + std::string(200, 'x') + "'; 1");
  EXPECT_EQ(failure.message, "The script takes 222 bytes, more than the limit of 100");
  EXPECT_EQ(Eval("typeof globalThis.big"), "undefined");
}

TEST_F(WebKitGtkWebControlTest, ADocumentOfAnotherOriginGetsNoScriptsOfTheHost) {
  StaticSiteServer other(*root_, *root_);
  Start();
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Eval("typeof wevlinHost"), "object");
  // The page goes elsewhere by itself.
  const int before = loads_.count;
  Eval("location.href = '" + other.Url("/plain.html") + "'; 1");
  ASSERT_TRUE(control_->RunUntil([&] { return loads_.count > before; }, kWait));
  const ScriptException refusal = Failure("document.title = 'changed'; 1");
  EXPECT_EQ(refusal.message,
            "The page's origin " + other.Origin() + " is not allowed to talk to the host");
  // Allowing that origin lets the host in again.
  control_->SetBridgePolicy(BridgePolicy().AllowOrigin(other.Origin()));
  EXPECT_EQ(Eval("document.title"), "");
}

TEST_F(WebKitGtkWebControlTest, APageCallIsServedWithTheCallerSet) {
  Start();
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Settle(EchoCall("hello")), "resolved: echo hello");
  EXPECT_EQ(callers_, std::vector<std::string>{server_->Origin() + " " +
                                               server_->Url("/plain.html") + " top"});
  EXPECT_EQ(control_->CurrentCaller(), nullptr);
  EXPECT_EQ(Settle("wevlinHost.tavoHostPing()"), "resolved: " + api_.tavoHostPing());
}

TEST_F(WebKitGtkWebControlTest, PostsWithoutTheBridgesKeyAreRefused) {
  LogLines log;
  Start();
  Open(server_->Url("/frame.html"));
  // The frame has no bridge, and its own post to the handler is refused.
  ASSERT_TRUE(control_->RunUntil([&] { return Eval("frames[0].reply") != ""; }, kWait));
  EXPECT_EQ(Eval("frames[0].hasHost"), "undefined");
  const std::string record =
      R"(true {"Exception": {"name": "std::runtime_error", "message": "The host does not serve this document"}})";
  EXPECT_EQ(Eval("frames[0].reply"), record);
  // So is a script of the top document that posts itself.
  EXPECT_EQ(Settle(std::string(kDirectPost) + ".then((r) => r[0] + ' ' + atob(r[1]))"),
            "resolved: " + record);
  EXPECT_TRUE(callers_.empty());
  EXPECT_TRUE(log.Has("WebKitGtkWebControl: refused tavoHostMethod without the bridge's key (in " +
                      server_->Url("/frame.html") + ")"))
      << log.All();
  // The top document's own bridge still works.
  EXPECT_EQ(Settle(EchoCall("top")), "resolved: echo top");
}

TEST_F(WebKitGtkWebControlTest, FramesTalkOnlyWhileThePolicyAllowsThem) {
  LogLines log;
  WebKitGtkOptions options;
  options.bridgePolicy.AllowSubframes();
  Start(options);
  Open(server_->Url("/framed.html"));
  ASSERT_TRUE(
      control_->RunUntil([&] { return Eval("typeof frames[0].wevlinHost") == "object"; }, kWait));
  const std::string frameCall = "frames[0]." + EchoCall("from the frame");
  EXPECT_EQ(Settle(frameCall), "resolved: echo from the frame");
  EXPECT_EQ(Settle(EchoCall("from the top")), "resolved: echo from the top");
  EXPECT_EQ(callers_, (std::vector<std::string>{
                          server_->Origin() + " " + server_->Url("/plain.html") + " frame",
                          server_->Origin() + " " + server_->Url("/framed.html") + " top"}));
  // The frame keeps its bridge, but the host no longer serves it.
  control_->SetBridgePolicy(BridgePolicy());
  const std::string refused = Settle(frameCall);
  EXPECT_NE(refused.find("The host does not serve frames"), std::string::npos) << refused;
  EXPECT_EQ(callers_.size(), 2U);
  EXPECT_TRUE(control_->RunUntil(
      [&] {
        return log.Has("WebKitGtkWebControl: refused tavoHostMethod from " + server_->Origin() +
                       " (" + server_->Url("/plain.html") + ")");
      },
      kWait))
      << log.All();
}

TEST_F(WebKitGtkWebControlTest, AMessageFarOverTheLimitIsRefusedUnread) {
  LogLines log;
  WebKitGtkOptions options;
  options.maxCallBytes = 1000;
  Start(options);
  Open(server_->Url("/plain.html"));
  const std::string outcome = Settle(
      "window.webkit.messageHandlers.wevlinHostCall.postMessage('x'.repeat(3000000))"
      ".then((r) => r[0] + ' ' + atob(r[1]))");
  EXPECT_NE(outcome.find("std::length_error"), std::string::npos) << outcome;
  EXPECT_TRUE(
      log.Has("WebKitGtkWebControl: refused a call of 3000000 characters over the size limit (in " +
              server_->Url("/plain.html") + ")"))
      << log.All();
  EXPECT_TRUE(callers_.empty());
}

TEST_F(WebKitGtkWebControlTest, ACallArrivingWhileAScriptRunsIsDeliveredAfterIt) {
  Start();
  Open(server_->Url("/plain.html"));
  bool inScript = false;
  bool enteredDuringScript = false;
  onCall_ = [&] { enteredDuringScript = enteredDuringScript || inScript; };
  inScript = true;
  // The call is posted before the script's value goes back; the page holds
  // the value a moment longer, so the call arrives while the host waits.
  EXPECT_EQ(Eval("globalThis.p = " + EchoCall("queued") +
                 "; const t0 = Date.now(); while (Date.now() - t0 < 200) {} 'done'"),
            "done");
  inScript = false;
  EXPECT_FALSE(enteredDuringScript);
  ASSERT_TRUE(control_->RunUntil([&] { return callers_.size() == 1; }, kWait));
  EXPECT_FALSE(enteredDuringScript);
}

TEST_F(WebKitGtkWebControlTest, EventsAreDeliveredFromTheGtkMainLoop) {
  Start();
  struct Loop {
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    bool timedOut = false;
  } run;
  const guint timer = g_timeout_add(
      30000,
      [](gpointer data) -> gboolean {
        auto* state = static_cast<Loop*>(data);
        state->timedOut = true;
        g_main_loop_quit(state->loop);
        return G_SOURCE_REMOVE;
      },
      &run);
  // The page calls the host while it loads; the load and the call reach the
  // host from the application's loop, and pumping inside a delivery does
  // nothing.
  std::size_t pumpedInside = 99;
  const auto quitWhenBoth = [&] {
    if (loads_.count > 0 && !callers_.empty()) g_main_loop_quit(run.loop);
  };
  loads_.action = [&] {
    pumpedInside = control_->PumpEvents();
    quitWhenBoth();
  };
  onCall_ = quitWhenBoth;
  control_->Navigate(server_->Url("/calls.html"));
  g_main_loop_run(run.loop);
  if (!run.timedOut) g_source_remove(timer);
  g_main_loop_unref(run.loop);
  ASSERT_FALSE(run.timedOut);
  EXPECT_EQ(loads_.count, 1);
  EXPECT_EQ(callers_, std::vector<std::string>{server_->Origin() + " " +
                                               server_->Url("/calls.html") + " top"});
  EXPECT_EQ(pumpedInside, 0U);
}

TEST_F(WebKitGtkWebControlTest, AWorkerThreadRunsScriptsWhileTheMainThreadDeliversEvents) {
  Start();
  Open(server_->Url("/plain.html"));
  std::atomic<bool> done{false};
  std::string value;
  std::string failure;
  std::thread worker([&] {
    try {
      value = control_->ExecuteScript("'from worker ' + (20 + 22)");
    } catch (const ScriptException& error) {
      failure = error.message;
    }
    done = true;
  });
  const bool finished = control_->RunUntil([&] { return done.load(); }, kWait);
  worker.join();
  EXPECT_TRUE(finished);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(value, "from worker 42");
}

TEST_F(WebKitGtkWebControlTest, AWorkerThreadRunsScriptsWhileTheMainThreadWaitsForOne) {
  Start();
  Open(server_->Url("/plain.html"));
  std::mutex mutex;
  std::condition_variable ready;
  bool go = false;
  std::atomic<bool> done{false};
  std::string value;
  std::string failure;
  std::thread worker([&] {
    {
      std::unique_lock<std::mutex> lock(mutex);
      ready.wait(lock, [&] { return go; });
    }
    try {
      value = control_->ExecuteScript("globalThis.order = (globalThis.order || '') + 'w'; 'w'");
    } catch (const ScriptException& error) {
      failure = error.message;
    }
    done = true;
  });
  {
    std::lock_guard<std::mutex> lock(mutex);
    go = true;
  }
  ready.notify_all();
  // The main thread's own script holds the page while the worker's waits.
  const std::string mine = Eval(
      "const t1 = Date.now(); while (Date.now() - t1 < 500) {} "
      "globalThis.order = (globalThis.order || '') + 'm'; 'm'");
  // The worker's answer, too, comes through the main thread's context.
  const bool finished = control_->RunUntil([&] { return done.load(); }, kWait);
  worker.join();
  EXPECT_TRUE(finished);
  EXPECT_EQ(mine, "m");
  EXPECT_EQ(failure, "");
  EXPECT_EQ(value, "w");
  EXPECT_EQ(Eval("globalThis.order").size(), 2U);
}

TEST_F(WebKitGtkWebControlTest, AWorkerGivesUpWhenTheMainThreadDoesNotIterate) {
  WebKitGtkOptions options;
  options.scriptTimeout = 100ms;
  Start(options);
  Open(server_->Url("/plain.html"));
  std::string failure;
  // The main thread only joins: nothing runs the worker's script.
  std::thread worker([&] {
    try {
      control_->ExecuteScript("globalThis.late = 1; 1");
    } catch (const ScriptException& error) {
      failure = error.message;
    }
  });
  worker.join();
  EXPECT_EQ(failure, "The script did not finish within 100 ms");
  // The request still waits in the main context; the control goes first.
  control_.reset();
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
}

TEST_F(WebKitGtkWebControlTest, DialogsAreAnsweredAtOnce) {
  LogLines log;
  std::vector<std::string> seen;
  WebKitGtkOptions options;
  options.dialogHandler = [&seen](const PageDialog& dialog) {
    seen.push_back(dialog.type + ":" + dialog.message + ":" + dialog.defaultPrompt);
    PageDialogAnswer answer;
    answer.accept = dialog.type != "alert";
    answer.promptText = "typed";
    return answer;
  };
  Start(options);
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Eval("alert('hi'); 'after alert'"), "after alert");
  EXPECT_EQ(Eval("confirm('sure?')"), "true");
  EXPECT_EQ(Eval("prompt('name?', 'def')"), "typed");
  EXPECT_EQ(seen, (std::vector<std::string>{"alert:hi:", "confirm:sure?:", "prompt:name?:def"}));
  // The answers are logged when the control next delivers events.
  EXPECT_FALSE(log.HasPrefix("WebKitGtkWebControl: answered")) << log.All();
  control_->PumpEvents();
  EXPECT_TRUE(log.Has("WebKitGtkWebControl: answered the page's alert dialog: dismissed"))
      << log.All();
  EXPECT_TRUE(log.Has("WebKitGtkWebControl: answered the page's confirm dialog: accepted"));
  EXPECT_TRUE(log.Has("WebKitGtkWebControl: answered the page's prompt dialog: accepted"));
}

TEST_F(WebKitGtkWebControlTest, DialogsWithoutAHandlerAreDismissed) {
  Start();
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Eval("confirm('sure?')"), "false");
  EXPECT_EQ(Eval("String(prompt('name?', 'def'))"), "null");
}

TEST_F(WebKitGtkWebControlTest, ConsoleMessagesAreLoggedWhenAskedFor) {
  LogLines log;
  WebKitGtkOptions options;
  options.logConsoleMessages = true;
  Start(options);
  Open(server_->Url("/plain.html"));
  Eval("console.log('hello', 42, {a: 1}); console.warn('careful'); 1");
  ASSERT_TRUE(control_->RunUntil([&] { return log.Has("console.warning: careful"); }, kWait))
      << log.All();
  EXPECT_TRUE(log.Has("console.log: hello 42 {\"a\":1}")) << log.All();
}

TEST_F(WebKitGtkWebControlTest, AFailedNavigationIsLoggedAndStillEndsInALoad) {
  LogLines log;
  Start();
  // A loopback port on which nothing listens any more.
  std::string url;
  {
    StaticSiteServer gone(*root_, *root_);
    url = gone.Url("/plain.html");
  }
  Open(url);
  EXPECT_TRUE(log.HasPrefix("WebKitGtkWebControl: navigation to " + url + " failed: "))
      << log.All();
}

TEST_F(WebKitGtkWebControlTest, AnEndedWebProcessFailsScriptsAtOnceUntilTheNextNavigation) {
  LogLines log;
  Start();
  Open(server_->Url("/plain.html"));
  ASSERT_TRUE(control_->IsBrowserRunning());
  webkit_web_view_terminate_web_process(control_->View());
  ASSERT_TRUE(control_->RunUntil([&] { return !control_->IsBrowserRunning(); }, kWait));
  control_->PumpEvents();
  EXPECT_TRUE(log.Has("WebKitGtkWebControl: the page's web process ended (was terminated)"))
      << log.All();
  EXPECT_EQ(Failure("1").message, "The page's web process ended (was terminated)");
  try {
    control_->SaveScreenshot(*root_ + "/never.png");
    ADD_FAILURE() << "a screenshot of an ended page";
  } catch (const WebKitGtkError& error) {
    EXPECT_STREQ(error.what(), "The page's web process ended (was terminated)");
  }
  EXPECT_FALSE(std::filesystem::exists(*root_ + "/never.png"));
  Open(server_->Url("/plain.html"));
  EXPECT_TRUE(control_->IsBrowserRunning());
  EXPECT_EQ(Eval("document.querySelector('p').textContent"), "plain");
  EXPECT_EQ(Settle(EchoCall("again")), "resolved: echo again");
}

TEST_F(WebKitGtkWebControlTest, AnEndlessScriptIsStoppedWithItsWebProcess) {
  WebKitGtkOptions options;
  options.scriptTimeout = 300ms;
  Start(options);
  Open(server_->Url("/plain.html"));
  const ScriptException endless = Failure("for (;;) {}");
  EXPECT_EQ(endless.message, "The script did not finish within 300 ms");
  ASSERT_TRUE(control_->RunUntil([&] { return !control_->IsBrowserRunning(); }, kWait));
  EXPECT_EQ(Failure("6 * 7").message, "The page's web process ended (was terminated)");
  Open(server_->Url("/plain.html"));
  EXPECT_EQ(Eval("6 * 7"), "42");
}

// Counts the warnings and criticals GObject writes, while it lives.
class GObjectWarnings {
 public:
  GObjectWarnings()
      : handler_(g_log_set_handler(
            "GLib-GObject", static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL),
            &GObjectWarnings::Count, this)) {}
  ~GObjectWarnings() { g_log_remove_handler("GLib-GObject", handler_); }
  GObjectWarnings(const GObjectWarnings&) = delete;
  GObjectWarnings& operator=(const GObjectWarnings&) = delete;

  const std::vector<std::string>& Messages() const { return messages_; }

 private:
  static void Count(const gchar* /*domain*/, GLogLevelFlags /*level*/, const gchar* message,
                    gpointer self) {
    static_cast<GObjectWarnings*>(self)->messages_.emplace_back(message);
  }

  guint handler_;
  std::vector<std::string> messages_;
};

TEST_F(WebKitGtkWebControlTest, AControlOutlivingItsWindowLetsGoOfTheViewQuietly) {
  Start();
  Open(server_->Url("/plain.html"));
  GObjectWarnings warnings;
  gtk_widget_destroy(window_);
  window_ = nullptr;
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
  control_.reset();
  EXPECT_EQ(warnings.Messages(), std::vector<std::string>());
}

TEST_F(WebKitGtkWebControlTest, AScreenshotIsAPngFile) {
  Start();
  Open(server_->Url("/plain.html"));
  const std::string path = *root_ + "/shot.png";
  control_->SaveScreenshot(path);
  std::ifstream file(path, std::ios::binary);
  std::string head(8, '\0');
  file.read(head.data(), 8);
  EXPECT_EQ(head, "\x89PNG\r\n\x1A\n");
  cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
  EXPECT_EQ(cairo_surface_status(surface), CAIRO_STATUS_SUCCESS);
  EXPECT_EQ(cairo_image_surface_get_width(surface), 640);
  EXPECT_EQ(cairo_image_surface_get_height(surface), 480);
  cairo_surface_destroy(surface);
}

}  // namespace
