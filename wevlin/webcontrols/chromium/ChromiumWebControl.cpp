#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <exception>
#include <fstream>
#include <mutex>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/internal/ChromiumProcess.h"
#include "wevlin/webcontrols/chromium/internal/DevToolsConnection.h"
#include "wevlin/webcontrols/chromium/internal/EvaluateReply.h"
#include "wevlin/webcontrols/chromium/internal/EventQueue.h"
#include "wevlin/webcontrols/chromium/internal/HostShimScript.h"
#include "wevlin/webcontrols/chromium/internal/PageEvent.h"
#include "wevlin/webcontrols/chromium/internal/Utf8Text.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium {

namespace {

using Json = internal::DevToolsConnection::Json;
using Infrastructure::Base::internal::WriteLogLine;
using Infrastructure::Interop::Base64;
using Infrastructure::Interop::HostAPI;
using ScriptException = Infrastructure::Interop::IWebControl::ScriptException;
using internal::ChromiumProcess;
using internal::DevToolsConnection;
using internal::EventQueue;
using internal::PageEvent;

// The DevTools binding through which the shim posts the page's calls, and the
// function through which the host settles them (see host-shim.js).
constexpr char kBindingName[] = "__wevlinHostBinding";
constexpr char kReplyFunction[] = "__wevlinHostReply";

// What a failed script throws stays in the page, held in this group until it
// is released; the values of scripts that succeed are copied and hold nothing.
constexpr char kObjectGroup[] = "wevlin-script";

constexpr char kDefaultExecutable[] = "/usr/bin/chromium";
constexpr char kExecutableVariable[] = "WEVLIN_CHROMIUM";
constexpr char kTraceVariable[] = "WEVLIN_CHROMIUM_TRACE";

constexpr char kCrashedText[] = "The page's renderer process crashed";

// RunUntil checks its condition at least this often.
constexpr std::chrono::milliseconds kPollInterval{10};

// The two below read the environment when a control starts; the library never
// changes the environment, so std::getenv has no setenv of ours to race with.
std::string ExecutableFor(const ChromiumOptions& options) {
  if (!options.executable.empty()) return options.executable;
  const char* variable = std::getenv(kExecutableVariable);  // NOLINT(concurrency-mt-unsafe)
  if (variable != nullptr && *variable != '\0') return variable;
  return kDefaultExecutable;
}

bool TraceWanted(const ChromiumOptions& options) {
  if (options.traceProtocol) return true;
  const char* variable = std::getenv(kTraceVariable);  // NOLINT(concurrency-mt-unsafe)
  return variable != nullptr && std::string(variable) == "1";
}

std::vector<std::string> ArgumentsFor(const ChromiumOptions& options) {
  std::vector<std::string> arguments = {
      "--headless",
      "--no-sandbox",
      "--disable-gpu",
      "--disable-quic",
      "--no-first-run",
      "--no-default-browser-check",
      "--disable-background-networking",
      "--disable-component-update",
      "--disable-sync",
      "--disable-breakpad",
      "--mute-audio",
      "--hide-scrollbars",
      "--remote-debugging-pipe",
      "--window-size=" + std::to_string(options.windowWidth) + "," +
          std::to_string(options.windowHeight),
  };
  arguments.insert(arguments.end(), options.extraArguments.begin(), options.extraArguments.end());
  return arguments;
}

// The script evaluated in each new document: the shim, called with the names
// of the binding and of the reply function.
std::string ShimSource() {
  return "(() => {\nconst install = " + std::string(internal::HostShimScript()) + "\ninstall(\"" +
         kBindingName + "\", \"" + kReplyFunction + "\");\n})();\n";
}

std::string StringOf(const Json& object, const char* key) {
  if (!object.is_object()) return {};
  const auto it = object.find(key);
  return it != object.end() && it->is_string() ? it->get<std::string>() : std::string();
}

const Json& ParamsOf(const Json& message) {
  static const Json kEmpty = Json::object();
  const auto it = message.find("params");
  return it != message.end() && it->is_object() ? *it : kEmpty;
}

// The text of one console message: its arguments as the console shows them.
std::string ConsoleText(const Json& params) {
  std::string text;
  const auto args = params.find("args");
  if (args == params.end() || !args->is_array()) return text;
  for (const Json& arg : *args) {
    if (!text.empty()) text += " ";
    std::string value;
    if (StringOf(arg, "type") == "string") {
      value = StringOf(arg, "value");
    } else if (!internal::ReadResultText(arg, &value) || value.empty()) {
      value = StringOf(arg, "description");
    }
    text += value;
  }
  return text;
}

}  // namespace

class ChromiumWebControl::Impl {
 public:
  explicit Impl(ChromiumOptions options);
  ~Impl();

  void Navigate(const std::string& target);
  std::string ExecuteScript(const std::string& script);
  void AddLoadObserver(ILoadObserver* observer);
  void RemoveLoadObserver(ILoadObserver* observer);
  std::size_t PumpEvents();
  bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);
  void SaveScreenshot(const std::string& path);

  ChromiumOptions options_;
  EventQueue events_;
  std::vector<ILoadObserver*> observers_;
  HostAPI* hostApi_ = nullptr;
  bool delivering_ = false;
  std::string targetId_;
  std::string sessionId_;
  // The session whose renderer crashed and has not been reloaded since ("" for
  // none). Set by the reader thread, cleared by it or by Navigate.
  std::mutex crashMutex_;
  std::string crashedSessionId_;
  // Declared last: the connection's reader thread uses the members above.
  std::unique_ptr<ChromiumProcess> process_;
  std::unique_ptr<DevToolsConnection> connection_;

 private:
  void OpenPage();
  void OnProtocolEvent(DevToolsConnection& connection, const Json& message);
  void Deliver(const PageEvent& event);
  void NotifyLoadObservers();
  void ServeHostCall(const std::string& callJson, std::int64_t contextId);
  void Reply(std::int64_t contextId, std::int64_t id, bool ok, const std::string& text);
  void ReleaseScriptObjects();
  bool PageCrashed();
  ScriptException ScriptFailure(const ChromiumError& error);
  ScriptException UncopyableValue(const ChromiumError& error);
};

ChromiumWebControl::Impl::Impl(ChromiumOptions options) : options_(std::move(options)) {
  process_ = std::make_unique<ChromiumProcess>(ExecutableFor(options_), ArgumentsFor(options_),
                                               options_.showBrowserOutput);
  connection_ = std::make_unique<DevToolsConnection>(
      process_.get(),
      [this](DevToolsConnection& connection, const Json& message) {
        OnProtocolEvent(connection, message);
      },
      [this](const std::string& reason) {
        PageEvent event;
        event.kind = PageEvent::Kind::BrowserClosed;
        event.text = reason;
        events_.Push(std::move(event));
      },
      TraceWanted(options_));
  try {
    OpenPage();
  } catch (const ChromiumError& error) {
    std::string message = error.what();
    if (error.kind() == ChromiumError::Kind::Exited) {
      process_->WaitForExit(std::chrono::milliseconds(1000));
      const std::string how = process_->ExitDescription();
      message = "The browser exited during start-up" + (how.empty() ? "" : " (" + how + ")");
    } else if (error.kind() == ChromiumError::Kind::NotAnswering) {
      message = "The browser did not start within " +
                std::to_string(options_.startTimeout.count()) + " ms";
    } else {
      message = "Cannot open the browser's page: " + message;
    }
    process_->Terminate();
    connection_->Stop();
    throw ChromiumError(ChromiumError::Kind::LaunchFailed, message);
  }
}

ChromiumWebControl::Impl::~Impl() {
  if (!connection_->IsClosed()) {
    try {
      connection_->Post("Browser.close", Json::object(), std::string(),
                        std::chrono::milliseconds(1000));
      process_->WaitForExit(options_.closeTimeout);
    } catch (const ChromiumError&) {
      // Killed below either way.
    }
  }
  process_->Terminate();
  connection_->Stop();
  events_.Clear();
}

void ChromiumWebControl::Impl::OpenPage() {
  // One time limit for the whole start: each command gets what is left.
  const auto deadline = std::chrono::steady_clock::now() + options_.startTimeout;
  const auto left = [&] {
    const auto remaining = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    return std::max(remaining, std::chrono::milliseconds(1));
  };
  const Json created =
      connection_->Call("Target.createTarget", {{"url", "about:blank"}}, std::string(), left());
  targetId_ = StringOf(created, "targetId");
  const Json attached = connection_->Call(
      "Target.attachToTarget", {{"targetId", targetId_}, {"flatten", true}}, std::string(), left());
  sessionId_ = StringOf(attached, "sessionId");
  connection_->Call("Page.enable", Json::object(), sessionId_, left());
  // The window of a headless browser keeps room for a frame; the page gets
  // exactly the size asked for, one device pixel per CSS pixel.
  connection_->Call("Emulation.setDeviceMetricsOverride",
                    {{"width", options_.windowWidth},
                     {"height", options_.windowHeight},
                     {"deviceScaleFactor", 1},
                     {"mobile", false}},
                    sessionId_, left());
  connection_->Call("Runtime.enable", Json::object(), sessionId_, left());
  connection_->Call("Runtime.addBinding", {{"name", kBindingName}}, sessionId_, left());
  connection_->Call("Page.addScriptToEvaluateOnNewDocument", {{"source", ShimSource()}}, sessionId_,
                    left());

  // The browser opens a tab of its own at start; only ours is needed.
  const Json targets =
      connection_->Call("Target.getTargets", Json::object(), std::string(), left());
  const auto infos = targets.find("targetInfos");
  if (infos != targets.end() && infos->is_array()) {
    for (const Json& info : *infos) {
      const std::string id = StringOf(info, "targetId");
      if (StringOf(info, "type") == "page" && id != targetId_) {
        connection_->Post("Target.closeTarget", {{"targetId", id}}, std::string(), left());
      }
    }
  }
  // The loads of about:blank are not the application's.
  events_.Clear();
}

void ChromiumWebControl::Impl::OnProtocolEvent(DevToolsConnection& connection,
                                               const Json& message) {
  const std::string method = StringOf(message, "method");
  const std::string sessionId = StringOf(message, "sessionId");
  const Json& params = ParamsOf(message);
  PageEvent event;
  event.sessionId = sessionId;
  if (method == "Page.frameStoppedLoading") {
    event.kind = PageEvent::Kind::FrameStoppedLoading;
    event.text = StringOf(params, "frameId");
  } else if (method == "Runtime.bindingCalled") {
    event.kind = PageEvent::Kind::BindingCalled;
    event.name = StringOf(params, "name");
    event.text = StringOf(params, "payload");
    const auto context = params.find("executionContextId");
    event.contextId =
        context != params.end() && context->is_number_integer() ? context->get<std::int64_t>() : 0;
  } else if (method == "Inspector.targetCrashed") {
    {
      std::lock_guard<std::mutex> lock(crashMutex_);
      crashedSessionId_ = sessionId;
    }
    connection.FailCalls(sessionId, ChromiumError::Kind::ProtocolError, kCrashedText);
    event.kind = PageEvent::Kind::PageCrashed;
  } else if (method == "Inspector.targetReloadedAfterCrash") {
    std::lock_guard<std::mutex> lock(crashMutex_);
    if (crashedSessionId_ == sessionId) crashedSessionId_.clear();
    return;
  } else if (method == "Target.detachedFromTarget") {
    event.sessionId = StringOf(params, "sessionId");
    connection.FailCalls(event.sessionId, ChromiumError::Kind::ProtocolError,
                         "The browser closed the page");
    event.kind = PageEvent::Kind::PageDetached;
  } else if (method == "Runtime.consoleAPICalled" && options_.logConsoleMessages) {
    event.kind = PageEvent::Kind::ConsoleMessage;
    event.name = StringOf(params, "type");
    event.text = ConsoleText(params);
  } else {
    return;
  }
  events_.Push(std::move(event));
}

std::size_t ChromiumWebControl::Impl::PumpEvents() {
  if (delivering_) return 0;
  delivering_ = true;
  std::deque<PageEvent> batch;
  try {
    batch = events_.TakeAll();
    for (const PageEvent& event : batch) Deliver(event);
  } catch (...) {
    delivering_ = false;
    throw;
  }
  delivering_ = false;
  return batch.size();
}

bool ChromiumWebControl::Impl::RunUntil(const std::function<bool()>& condition,
                                        std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    PumpEvents();
    if (condition()) return true;
    const auto now = std::chrono::steady_clock::now();
    if (now >= deadline) return false;
    if (connection_->IsClosed() && events_.Empty()) return condition();
    events_.WaitUntil(std::min(deadline, now + kPollInterval));
  }
}

void ChromiumWebControl::Impl::Deliver(const PageEvent& event) {
  const bool ours = event.sessionId == sessionId_;
  switch (event.kind) {
    case PageEvent::Kind::FrameStoppedLoading:
      if (ours && event.text == targetId_) NotifyLoadObservers();
      break;
    case PageEvent::Kind::BindingCalled:
      if (ours && event.name == kBindingName) ServeHostCall(event.text, event.contextId);
      break;
    case PageEvent::Kind::NavigationFailed:
      WriteLogLine("ChromiumWebControl: navigation to " + event.name + " failed: " + event.text);
      break;
    case PageEvent::Kind::PageCrashed:
      if (ours) WriteLogLine("ChromiumWebControl: the page's renderer process crashed");
      break;
    case PageEvent::Kind::PageDetached:
      if (ours) WriteLogLine("ChromiumWebControl: the browser closed the page");
      break;
    case PageEvent::Kind::ConsoleMessage:
      if (ours) WriteLogLine("console." + event.name + ": " + event.text);
      break;
    case PageEvent::Kind::BrowserClosed:
      WriteLogLine("ChromiumWebControl: " + event.text);
      break;
  }
}

void ChromiumWebControl::Impl::NotifyLoadObservers() {
  const std::vector<ILoadObserver*> observers = observers_;
  for (ILoadObserver* observer : observers) {
    // An observer removed by an earlier one in this round is not told.
    if (std::find(observers_.begin(), observers_.end(), observer) == observers_.end()) continue;
    try {
      observer->OnLoadCompleted();
    } catch (const std::exception& error) {
      WriteLogLine(std::string("ChromiumWebControl: a load observer failed: ") + error.what());
    } catch (const ScriptException& error) {
      WriteLogLine("ChromiumWebControl: a load observer failed: " + error.message);
    } catch (...) {
      WriteLogLine("ChromiumWebControl: a load observer failed");
    }
  }
}

void ChromiumWebControl::Impl::ServeHostCall(const std::string& callJson, std::int64_t contextId) {
  const Json call = Json::parse(callJson, nullptr, false);
  const auto id = call.is_object() ? call.find("id") : call.end();
  if (call.is_discarded() || !call.is_object() || id == call.end() || !id->is_number_integer()) {
    WriteLogLine("ChromiumWebControl: ignored a malformed call of the page");
    return;
  }
  const std::int64_t callId = id->get<std::int64_t>();
  const std::string function = StringOf(call, "fn");
  std::vector<std::string> args;
  const auto list = call.find("args");
  if (list != call.end() && list->is_array()) {
    for (const Json& arg : *list) {
      args.push_back(arg.is_string() ? arg.get<std::string>() : std::string());
    }
  }

  if (hostApi_ == nullptr) {
    Reply(contextId, callId, false, "No HostAPI is set on the web control");
    return;
  }
  std::string answer;
  std::string failure;
  try {
    if (function == "tavoHostMethod" && args.size() == 2) {
      answer = hostApi_->tavoHostMethod(args[0], args[1]);
    } else if (function == "tavoHostEvent" && args.size() == 2) {
      answer = hostApi_->tavoHostEvent(args[0], args[1]);
    } else if (function == "tavoHostPing" && args.empty()) {
      answer = hostApi_->tavoHostPing();
    } else if (function == "tavoHost_WebSideServiceListUpdate" && args.size() == 2) {
      answer = hostApi_->tavoHost_WebSideServiceListUpdate(args[0], args[1]);
    } else if (function == "tavoHost_WebSideStartHandShake" && args.empty()) {
      answer = hostApi_->tavoHost_WebSideStartHandShake();
    } else {
      failure =
          "No host function " + function + " taking " + std::to_string(args.size()) + " arguments";
    }
  } catch (const std::exception& error) {
    failure = error.what();
  } catch (const ScriptException& error) {
    failure = error.message;
  } catch (...) {
    failure = "unknown exception";
  }
  if (!failure.empty()) {
    WriteLogLine("ChromiumWebControl: the page's call of " + function + " failed: " + failure);
    Reply(contextId, callId, false, failure);
    return;
  }
  Reply(contextId, callId, true, answer);
}

void ChromiumWebControl::Impl::Reply(std::int64_t contextId, std::int64_t id, bool ok,
                                     const std::string& text) {
  std::string encoded;
  Base64::EncodeString(text, encoded);
  const std::string expression = std::string("globalThis.") + kReplyFunction + "(" +
                                 std::to_string(id) + ", " + (ok ? "true" : "false") + ", \"" +
                                 encoded + "\")";
  Json params = {{"expression", expression}};
  if (contextId != 0) params["contextId"] = contextId;
  try {
    connection_->Post("Runtime.evaluate", std::move(params), sessionId_, options_.commandTimeout);
  } catch (const ChromiumError&) {
    // The browser or the page is gone: nobody waits for the answer any more.
  }
}

bool ChromiumWebControl::Impl::PageCrashed() {
  std::lock_guard<std::mutex> lock(crashMutex_);
  return !crashedSessionId_.empty() && crashedSessionId_ == sessionId_;
}

void ChromiumWebControl::Impl::Navigate(const std::string& target) {
  const std::string url = internal::ToValidUtf8(target);
  {
    // The navigation loads the page in a new renderer process.
    std::lock_guard<std::mutex> lock(crashMutex_);
    crashedSessionId_.clear();
  }
  connection_->Post("Page.navigate", {{"url", url}}, sessionId_, options_.commandTimeout,
                    [this, url](const Json& reply) {
                      std::string reason;
                      const auto result = reply.find("result");
                      if (result != reply.end()) reason = StringOf(*result, "errorText");
                      const auto error = reply.find("error");
                      if (error != reply.end()) reason = StringOf(*error, "message");
                      if (reason.empty()) return;
                      PageEvent event;
                      event.kind = PageEvent::Kind::NavigationFailed;
                      event.name = url;
                      event.text = reason;
                      events_.Push(std::move(event));
                    });
}

ScriptException ChromiumWebControl::Impl::ScriptFailure(const ChromiumError& error) {
  if (error.kind() == ChromiumError::Kind::NotAnswering) {
    // A script that runs too long holds the page; stop it so that the page
    // answers again.
    try {
      connection_->Post("Runtime.terminateExecution", Json::object(), sessionId_,
                        options_.commandTimeout);
    } catch (const ChromiumError&) {
      // Nothing more to stop.
    }
    return {error.what(), "The script was stopped."};
  }
  return {error.what(), std::string()};
}

ScriptException ChromiumWebControl::Impl::UncopyableValue(const ChromiumError& error) {
  const std::string prefix = "Runtime.evaluate failed: ";
  std::string reason = error.what();
  if (reason.rfind(prefix, 0) == 0) reason.erase(0, prefix.size());
  return {"The browser cannot copy the script's value (" + reason + ")",
          "The script ran, but its value is not plain data: return one without cycles or symbols, "
          "and without BigInts inside objects"};
}

void ChromiumWebControl::Impl::ReleaseScriptObjects() {
  try {
    connection_->Post("Runtime.releaseObjectGroup", {{"objectGroup", kObjectGroup}}, sessionId_,
                      options_.commandTimeout);
  } catch (const ChromiumError&) {
    // The objects went with the page.
  }
}

std::string ChromiumWebControl::Impl::ExecuteScript(const std::string& script) {
  // A crashed page answers nothing until it is loaded again.
  if (PageCrashed()) throw ScriptException(kCrashedText, std::string());
  const std::string source = internal::ToValidUtf8(script);
  Json reply;
  try {
    // The browser copies the value into its answer as JSON.
    reply = connection_->Call("Runtime.evaluate",
                              {{"expression", source},
                               {"objectGroup", kObjectGroup},
                               {"returnByValue", true},
                               {"awaitPromise", false}},
                              sessionId_, options_.commandTimeout);
  } catch (const ChromiumError& error) {
    if (error.kind() == ChromiumError::Kind::ProtocolError &&
        internal::IsUncopyableValueError(error.what())) {
      throw UncopyableValue(error);
    }
    throw ScriptFailure(error);
  }
  const auto details = reply.find("exceptionDetails");
  if (details != reply.end() && details->is_object()) {
    ReleaseScriptObjects();
    throw internal::MakeScriptException(*details, source);
  }
  const auto result = reply.find("result");
  std::string text;
  if (result != reply.end() && !internal::ReadResultText(*result, &text)) {
    // A handle instead of a copy: nothing to read, and nothing to keep.
    ReleaseScriptObjects();
    text.clear();
  }
  return text;
}

void ChromiumWebControl::Impl::AddLoadObserver(ILoadObserver* observer) {
  if (observer == nullptr) return;
  if (std::find(observers_.begin(), observers_.end(), observer) != observers_.end()) return;
  observers_.push_back(observer);
}

void ChromiumWebControl::Impl::RemoveLoadObserver(ILoadObserver* observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void ChromiumWebControl::Impl::SaveScreenshot(const std::string& path) {
  if (PageCrashed()) throw ChromiumError(ChromiumError::Kind::ProtocolError, kCrashedText);
  const Json shot = connection_->Call("Page.captureScreenshot", {{"format", "png"}}, sessionId_,
                                      options_.commandTimeout);
  std::string bytes;
  Base64::DecodeString(StringOf(shot, "data"), bytes);
  if (bytes.empty()) {
    throw ChromiumError(ChromiumError::Kind::ProtocolError,
                        "Page.captureScreenshot failed: the browser sent no picture");
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (file) file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (file) file.close();
  if (!file) {
    throw ChromiumError(ChromiumError::Kind::FileError, "Cannot write the screenshot to " + path);
  }
}

ChromiumWebControl::ChromiumWebControl() : ChromiumWebControl(ChromiumOptions()) {}

ChromiumWebControl::ChromiumWebControl(ChromiumOptions options)
    : impl_(std::make_unique<Impl>(std::move(options))) {}

ChromiumWebControl::~ChromiumWebControl() = default;

void ChromiumWebControl::Navigate(std::string target) { impl_->Navigate(target); }

std::string ChromiumWebControl::ExecuteScript(std::string script) {
  return impl_->ExecuteScript(script);
}

void ChromiumWebControl::AddLoadObserver(IWebControl::ILoadObserver* observer) {
  impl_->AddLoadObserver(observer);
}

void ChromiumWebControl::RemoveLoadObserver(IWebControl::ILoadObserver* observer) {
  impl_->RemoveLoadObserver(observer);
}

void ChromiumWebControl::SetHostAPI(HostAPI* hostApi) { impl_->hostApi_ = hostApi; }

HostAPI* ChromiumWebControl::GetHostAPI() const { return impl_->hostApi_; }

std::size_t ChromiumWebControl::PumpEvents() { return impl_->PumpEvents(); }

bool ChromiumWebControl::RunUntil(const std::function<bool()>& condition,
                                  std::chrono::milliseconds timeout) {
  return impl_->RunUntil(condition, timeout);
}

void ChromiumWebControl::SaveScreenshot(const std::string& path) { impl_->SaveScreenshot(path); }

bool ChromiumWebControl::IsBrowserRunning() const { return !impl_->connection_->IsClosed(); }

std::int64_t ChromiumWebControl::BrowserProcessId() const { return impl_->process_->ProcessId(); }

std::string ChromiumWebControl::ProfileDirectory() const {
  return impl_->process_->ProfileDirectory();
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium
