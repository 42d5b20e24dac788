#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <exception>
#include <fstream>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/internal/ChromiumProcess.h"
#include "wevlin/webcontrols/chromium/internal/DevToolsConnection.h"
#include "wevlin/webcontrols/chromium/internal/EvaluateParams.h"
#include "wevlin/webcontrols/chromium/internal/EvaluateReply.h"
#include "wevlin/webcontrols/chromium/internal/EventQueue.h"
#include "wevlin/webcontrols/chromium/internal/PageEvent.h"
#include "wevlin/webcontrols/internal/PageBridge.h"
#include "wevlin/webcontrols/internal/Utf8Text.h"

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
using WebControls::BridgePolicy;
using WebControls::PageCaller;
using WebControls::PageDialog;
using WebControls::PageDialogAnswer;
using WebControls::internal::PageBridge;

// The DevTools binding through which the shim posts the page's calls, and the
// function through which the host settles them (see bridge-shim.js).
constexpr char kBindingName[] = "__wevlinHostBinding";
constexpr char kReplyFunction[] = "__wevlinHostReply";

// What a failed script throws stays in the page, held in this group until it
// is released; the values of scripts that succeed are copied and hold nothing.
constexpr char kObjectGroup[] = "wevlin-script";

constexpr char kDefaultExecutable[] = "/usr/bin/chromium";
constexpr char kExecutableVariable[] = "WEVLIN_CHROMIUM";
constexpr char kTraceVariable[] = "WEVLIN_CHROMIUM_TRACE";

constexpr char kCrashedText[] = "The page's renderer process crashed";
constexpr char kControlName[] = "ChromiumWebControl";

// What the browser answers a script for a script context that has gone.
constexpr char kContextGone[] = "Cannot find context with specified id";
constexpr char kDocumentChangedText[] = "The page's document changed before the script ran";

// Room for the protocol's own members around a call's texts.
constexpr std::size_t kMessageRoom = std::size_t{1024} * 1024;
// The largest message of the browser that is read at all.
constexpr std::size_t kMaxIncomingBase = std::size_t{1024} * 1024 * 1024;

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

// Returns why the browser runs without its sandbox, or "" when it has one.
std::string SandboxlessReason(const ChromiumOptions& options) {
  if (ChromiumProcess::RunsAsAdministrator()) return "running as root";
  if (options.disableSandbox) return "the application asked for it";
  return {};
}

bool TraceWanted(const ChromiumOptions& options) {
  if (options.traceProtocol) return true;
  const char* variable = std::getenv(kTraceVariable);  // NOLINT(concurrency-mt-unsafe)
  return variable != nullptr && std::string(variable) == "1";
}

std::vector<std::string> ArgumentsFor(const ChromiumOptions& options) {
  std::vector<std::string> arguments = {
      "--headless",
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
  // The renderers run in the browser's sandbox unless the browser cannot
  // start with it (as root) or the application asked for that.
  const std::string unsandboxed = SandboxlessReason(options);
  if (!unsandboxed.empty()) arguments.emplace_back("--no-sandbox");
  arguments.insert(arguments.end(), options.extraArguments.begin(), options.extraArguments.end());
  return arguments;
}

// The shim's transport in this control: the DevTools binding and the reply
// function.
std::string ShimTransport() {
  return std::string("{binding: \"") + kBindingName + "\", reply: \"" + kReplyFunction + "\"}";
}

// The origin as a browser reports it, with an opaque one written "null"
// whichever way the browser spelled it.
std::string ReportedOrigin(const std::string& origin) {
  if (origin.empty() || origin == "://" || origin == "null") return BridgePolicy::kOpaqueOrigin;
  return origin;
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
  std::string ExecuteScript(std::string script);
  void AddLoadObserver(ILoadObserver* observer);
  void RemoveLoadObserver(ILoadObserver* observer);
  std::size_t PumpEvents();
  bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);
  void SaveScreenshot(const std::string& path);

  void SetBridgePolicy(BridgePolicy policy);

  ChromiumOptions options_;
  EventQueue events_;
  std::vector<ILoadObserver*> observers_;
  PageBridge bridge_{kControlName};
  bool delivering_ = false;
  std::string targetId_;
  std::string sessionId_;
  // What the browser reported of the page's documents, kept by the reader
  // thread: script contexts by id and frames by id. With the bridge's policy
  // and navigation, guarded by pageMutex_.
  struct Context {
    std::string origin;
    std::string frameId;
    bool isDefault = false;
  };
  struct Frame {
    std::string url;
    std::string origin;
  };
  mutable std::mutex pageMutex_;
  std::map<std::int64_t, Context> contexts_;
  std::map<std::string, Frame> frames_;
  // The identifier of the shim's registration for new documents, and the
  // number of registrations asked for so far.
  std::string shimIdentifier_;
  std::uint64_t shimGeneration_ = 0;
  // The source of the shim asked for last.
  std::string shimSource_;
  // The session whose renderer crashed and has not been reloaded since ("" for
  // none). Set by the reader thread, cleared by it or by Navigate.
  std::mutex crashMutex_;
  std::string crashedSessionId_;
  // Declared last: the connection's reader thread uses the members above.
  std::unique_ptr<ChromiumProcess> process_;
  std::unique_ptr<DevToolsConnection> connection_;

 private:
  void OpenPage();
  void OnProtocolEvent(DevToolsConnection& connection, Json& message);
  void Deliver(PageEvent& event);
  void NotifyLoadObservers();
  void ServeHostCall(PageEvent& event);
  void InstallShim(std::chrono::milliseconds timeout);
  void TrackPage(const std::string& method, const Json& params);
  PageCaller CallerLocked(std::int64_t contextId) const;
  std::int64_t TopContextLocked(PageCaller& top) const;
  void AnswerDialog(DevToolsConnection& connection, const std::string& sessionId,
                    const Json& params);
  void Reply(std::int64_t contextId, PageBridge::Answer answer);
  void ReleaseScriptObjects();
  bool PageCrashed();
  ScriptException ScriptFailure(const ChromiumError& error);
  ScriptException UncopyableValue(const ChromiumError& error);
};

ChromiumWebControl::Impl::Impl(ChromiumOptions options) : options_(std::move(options)) {
  bridge_.SetPolicy(options_.bridgePolicy);
  bridge_.SetMaxCallBytes(options_.maxCallBytes);
  process_ = std::make_unique<ChromiumProcess>(ExecutableFor(options_), ArgumentsFor(options_),
                                               options_.showBrowserOutput);
  connection_ = std::make_unique<DevToolsConnection>(
      process_.get(),
      [this](DevToolsConnection& connection, Json& message) {
        OnProtocolEvent(connection, message);
      },
      [this](const std::string& reason) {
        PageEvent event;
        event.kind = PageEvent::Kind::BrowserClosed;
        event.text = reason;
        events_.Push(std::move(event));
      },
      TraceWanted(options_));
  // A call's texts arrive escaped twice (by the page's JSON and by the
  // protocol's), which can make them several times longer; a message longer
  // than that is no call of an honest page and is skipped unread. Commands
  // keep the connection's own ceiling, below what the browser accepts.
  const std::size_t maxIncoming = options_.maxCallBytes > kMaxIncomingBase / 8
                                      ? kMaxIncomingBase
                                      : 8 * options_.maxCallBytes + kMessageRoom;
  connection_->SetMessageLimits(maxIncoming, DevToolsConnection::kMaxPipeMessageBytes);
  // Events the control does not use are not read at all, however big: the
  // page's uncaught exceptions, and its console messages unless they are
  // logged.
  const bool logConsole = options_.logConsoleMessages;
  connection_->SetEventFilter([logConsole](std::string_view method) {
    return method != "Runtime.exceptionThrown" &&
           (logConsole || method != "Runtime.consoleAPICalled");
  });
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
  const std::string unsandboxed = SandboxlessReason(options_);
  if (!unsandboxed.empty()) {
    WriteLogLine(std::string(kControlName) + ": the page runs without the browser's sandbox (" +
                 unsandboxed + ")");
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
  InstallShim(left());

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

void ChromiumWebControl::Impl::InstallShim(std::chrono::milliseconds timeout) {
  std::string source;
  std::string previous;
  std::uint64_t generation = 0;
  {
    std::lock_guard<std::mutex> lock(pageMutex_);
    source = bridge_.ShimSource(ShimTransport());
    // The same shim is in place already: nothing to change.
    if (source == shimSource_) return;
    shimSource_ = source;
    previous = std::exchange(shimIdentifier_, std::string());
    generation = ++shimGeneration_;
  }
  const auto keep = [this, generation, timeout](std::string identifier) {
    {
      std::lock_guard<std::mutex> lock(pageMutex_);
      if (generation == shimGeneration_) {
        shimIdentifier_ = std::move(identifier);
        return;
      }
    }
    // A later policy or navigation replaced this shim before it was in place.
    try {
      connection_->Post("Page.removeScriptToEvaluateOnNewDocument", {{"identifier", identifier}},
                        sessionId_, timeout);
    } catch (const ChromiumError&) {
      // The page is gone, and the shim with it.
    }
  };
  if (PageCrashed()) {
    // A page whose renderer crashed answers these only once a navigation
    // loads it again; the browser takes a session's commands in order, so
    // the shim is in place for the navigation posted after them.
    if (!previous.empty()) {
      connection_->Post("Page.removeScriptToEvaluateOnNewDocument", {{"identifier", previous}},
                        sessionId_, timeout);
    }
    connection_->Post("Page.addScriptToEvaluateOnNewDocument", {{"source", std::move(source)}},
                      sessionId_, timeout, [keep](const Json& reply) {
                        const auto result = reply.find("result");
                        if (result != reply.end()) keep(StringOf(*result, "identifier"));
                      });
    return;
  }
  // Otherwise the shim is in place before this returns, so that the next
  // document gets it.
  if (!previous.empty()) {
    connection_->Call("Page.removeScriptToEvaluateOnNewDocument", {{"identifier", previous}},
                      sessionId_, timeout);
  }
  const Json added = connection_->Call("Page.addScriptToEvaluateOnNewDocument",
                                       {{"source", std::move(source)}}, sessionId_, timeout);
  keep(StringOf(added, "identifier"));
}

void ChromiumWebControl::Impl::SetBridgePolicy(BridgePolicy policy) {
  {
    std::lock_guard<std::mutex> lock(pageMutex_);
    bridge_.SetPolicy(std::move(policy));
  }
  InstallShim(options_.commandTimeout);
}

// Keeps what the browser reports of the page's frames and script contexts,
// on the reader thread, so that every call and script is checked against the
// document the browser says it is in.
void ChromiumWebControl::Impl::TrackPage(const std::string& method, const Json& params) {
  std::lock_guard<std::mutex> lock(pageMutex_);
  if (method == "Runtime.executionContextCreated") {
    const auto context = params.find("context");
    if (context == params.end() || !context->is_object()) return;
    const auto id = context->find("id");
    if (id == context->end() || !id->is_number_integer()) return;
    Context entry;
    entry.origin = ReportedOrigin(StringOf(*context, "origin"));
    const auto aux = context->find("auxData");
    if (aux != context->end() && aux->is_object()) {
      entry.frameId = StringOf(*aux, "frameId");
      const auto isDefault = aux->find("isDefault");
      entry.isDefault =
          isDefault != aux->end() && isDefault->is_boolean() && isDefault->get<bool>();
    }
    contexts_[id->get<std::int64_t>()] = entry;
  } else if (method == "Runtime.executionContextDestroyed") {
    const auto id = params.find("executionContextId");
    if (id != params.end() && id->is_number_integer()) contexts_.erase(id->get<std::int64_t>());
  } else if (method == "Runtime.executionContextsCleared") {
    contexts_.clear();
  } else if (method == "Page.frameNavigated") {
    const auto frame = params.find("frame");
    if (frame == params.end() || !frame->is_object()) return;
    Frame& entry = frames_[StringOf(*frame, "id")];
    entry.url = StringOf(*frame, "url") + StringOf(*frame, "urlFragment");
    entry.origin = ReportedOrigin(StringOf(*frame, "securityOrigin"));
  } else if (method == "Page.frameDetached") {
    frames_.erase(StringOf(params, "frameId"));
  }
}

PageCaller ChromiumWebControl::Impl::CallerLocked(std::int64_t contextId) const {
  PageCaller caller;
  caller.origin = BridgePolicy::kOpaqueOrigin;
  const auto context = contexts_.find(contextId);
  // Only the page's own script world has the binding; a call from anywhere
  // else is of no document the policy knows.
  if (context == contexts_.end() || !context->second.isDefault) return caller;
  caller.origin = context->second.origin;
  caller.topFrame = context->second.frameId == targetId_;
  const auto frame = frames_.find(context->second.frameId);
  if (frame != frames_.end()) caller.url = frame->second.url;
  return caller;
}

std::int64_t ChromiumWebControl::Impl::TopContextLocked(PageCaller& top) const {
  top.topFrame = true;
  top.origin = BridgePolicy::kOpaqueOrigin;
  const auto frame = frames_.find(targetId_);
  if (frame != frames_.end()) {
    top.url = frame->second.url;
    top.origin = frame->second.origin;
  }
  for (const auto& [id, context] : contexts_) {
    if (context.isDefault && context.frameId == targetId_) {
      top.origin = context.origin;
      return id;
    }
  }
  return 0;
}

void ChromiumWebControl::Impl::AnswerDialog(DevToolsConnection& connection,
                                            const std::string& sessionId, const Json& params) {
  PageDialog dialog;
  dialog.type = StringOf(params, "type");
  dialog.message = StringOf(params, "message");
  dialog.defaultPrompt = StringOf(params, "defaultPrompt");
  dialog.url = StringOf(params, "url");
  PageDialogAnswer answer;
  answer.accept = dialog.type == "beforeunload";
  if (options_.dialogHandler) {
    try {
      answer = options_.dialogHandler(dialog);
    } catch (...) {
      // A failing hook leaves the default answer.
    }
  }
  Json command = {{"accept", answer.accept}};
  if (answer.accept && dialog.type == "prompt") command["promptText"] = answer.promptText;
  try {
    connection.Post("Page.handleJavaScriptDialog", std::move(command), sessionId,
                    options_.commandTimeout);
  } catch (const ChromiumError&) {
    // The page is gone, and its dialog with it.
  }
  PageEvent event;
  event.kind = PageEvent::Kind::DialogAnswered;
  event.sessionId = sessionId;
  event.name = dialog.type;
  event.text = answer.accept ? "accepted" : "dismissed";
  events_.Push(std::move(event));
}

void ChromiumWebControl::Impl::OnProtocolEvent(DevToolsConnection& connection, Json& message) {
  const std::string method = StringOf(message, "method");
  const std::string sessionId = StringOf(message, "sessionId");
  const Json& params = ParamsOf(message);
  if (sessionId == sessionId_) TrackPage(method, params);
  PageEvent event;
  event.sessionId = sessionId;
  if (method == "Page.javascriptDialogOpening") {
    AnswerDialog(connection, sessionId, params);
    return;
  }
  if (method == "Page.frameStoppedLoading") {
    event.kind = PageEvent::Kind::FrameStoppedLoading;
    event.text = StringOf(params, "frameId");
  } else if (method == "Runtime.bindingCalled") {
    event.kind = PageEvent::Kind::BindingCalled;
    event.name = StringOf(params, "name");
    // Moved out of the message: a call may be as big as the limit.
    const auto payload = message["params"].find("payload");
    if (payload != message["params"].end() && payload->is_string()) {
      event.text = std::move(payload->get_ref<std::string&>());
    }
    const auto context = params.find("executionContextId");
    event.contextId =
        context != params.end() && context->is_number_integer() ? context->get<std::int64_t>() : 0;
    std::lock_guard<std::mutex> lock(pageMutex_);
    event.caller = CallerLocked(event.contextId);
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
    for (PageEvent& event : batch) Deliver(event);
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

void ChromiumWebControl::Impl::Deliver(PageEvent& event) {
  const bool ours = event.sessionId == sessionId_;
  switch (event.kind) {
    case PageEvent::Kind::FrameStoppedLoading:
      if (ours && event.text == targetId_) NotifyLoadObservers();
      break;
    case PageEvent::Kind::BindingCalled:
      if (ours && event.name == kBindingName) ServeHostCall(event);
      break;
    case PageEvent::Kind::DialogAnswered:
      if (ours) {
        WriteLogLine(std::string(kControlName) + ": answered the page's " + event.name +
                     " dialog: " + event.text);
      }
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

void ChromiumWebControl::Impl::ServeHostCall(PageEvent& event) {
  PageBridge::Call call;
  // The call's text is freed once read, before the service runs.
  if (!PageBridge::ReadCall(std::move(event.text), call)) {
    WriteLogLine("ChromiumWebControl: ignored a malformed call of the page");
    return;
  }
  Reply(event.contextId, bridge_.Serve(std::move(call), event.caller));
}

void ChromiumWebControl::Impl::Reply(std::int64_t contextId, PageBridge::Answer answer) {
  try {
    // The answer is encoded piece by piece straight into the pipe: a big
    // answer is never held a second time.
    connection_->PostStreamedParams(
        "Runtime.evaluate", PageBridge::ReplyEvaluateParamsSize(kReplyFunction, answer, contextId),
        [&](const std::function<void(std::string_view)>& put) {
          PageBridge::WriteReplyEvaluateParams(kReplyFunction, answer, contextId, put);
        },
        sessionId_, options_.commandTimeout);
  } catch (const ChromiumError&) {
    // The browser or the page is gone: nobody waits for the answer any more.
  }
}

bool ChromiumWebControl::Impl::PageCrashed() {
  std::lock_guard<std::mutex> lock(crashMutex_);
  return !crashedSessionId_.empty() && crashedSessionId_ == sessionId_;
}

void ChromiumWebControl::Impl::Navigate(const std::string& target) {
  const std::string url = WebControls::internal::ToValidUtf8(target);
  // The documents of the new address get the bridge before it loads.
  {
    std::lock_guard<std::mutex> lock(pageMutex_);
    bridge_.SetNavigatedUrl(url);
  }
  InstallShim(options_.commandTimeout);
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

std::string ChromiumWebControl::Impl::ExecuteScript(std::string script) {
  // A crashed page answers nothing until it is loaded again.
  if (PageCrashed()) throw ScriptException(kCrashedText, std::string());
  if (script.size() > bridge_.GetMaxCallBytes()) {
    throw ScriptException("The script takes " + std::to_string(script.size()) +
                              " bytes, more than the limit of " +
                              std::to_string(bridge_.GetMaxCallBytes()),
                          "The script was not run.");
  }
  // The script runs in the top document the policy was checked against, or
  // in none: a document that replaced it meanwhile has another context.
  std::int64_t contextId = 0;
  {
    std::lock_guard<std::mutex> lock(pageMutex_);
    PageCaller top;
    contextId = TopContextLocked(top);
    const std::string refusal = bridge_.ScriptRefusal(top);
    if (!refusal.empty()) {
      throw ScriptException(refusal, "The script was not run in " + top.url + ".");
    }
  }
  // Valid text, the usual case, is sent as it is, without a copy.
  if (!WebControls::internal::IsValidUtf8(script)) {
    script = WebControls::internal::ToValidUtf8(script);
  }
  Json reply;
  try {
    // The script is escaped straight into the pipe; the browser copies the
    // value into its answer as JSON.
    const internal::EvaluateParams params(script, kObjectGroup, contextId);
    reply = connection_->CallStreamedParams(
        "Runtime.evaluate", params.Size(),
        [&params](const std::function<void(std::string_view)>& put) { params.Write(put); },
        sessionId_, options_.commandTimeout);
  } catch (const ChromiumError& error) {
    if (error.kind() == ChromiumError::Kind::ProtocolError &&
        internal::IsUncopyableValueError(error.what())) {
      throw UncopyableValue(error);
    }
    if (contextId != 0 && error.kind() == ChromiumError::Kind::ProtocolError &&
        std::string(error.what()).find(kContextGone) != std::string::npos) {
      // The checked document went away (the page navigated) while the
      // script was on its way: it ran nowhere.
      throw ScriptException(kDocumentChangedText, "The script was not run.");
    }
    throw ScriptFailure(error);
  }
  const auto details = reply.find("exceptionDetails");
  if (details != reply.end() && details->is_object()) {
    ReleaseScriptObjects();
    throw internal::MakeScriptException(*details, script);
  }
  const auto result = reply.find("result");
  std::string text;
  if (result != reply.end() && !internal::ReadResultText(std::move(*result), &text)) {
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
  return impl_->ExecuteScript(std::move(script));
}

void ChromiumWebControl::AddLoadObserver(IWebControl::ILoadObserver* observer) {
  impl_->AddLoadObserver(observer);
}

void ChromiumWebControl::RemoveLoadObserver(IWebControl::ILoadObserver* observer) {
  impl_->RemoveLoadObserver(observer);
}

void ChromiumWebControl::SetHostAPI(HostAPI* hostApi) { impl_->bridge_.SetHostAPI(hostApi); }

HostAPI* ChromiumWebControl::GetHostAPI() const { return impl_->bridge_.GetHostAPI(); }

void ChromiumWebControl::SetBridgePolicy(BridgePolicy policy) {
  impl_->SetBridgePolicy(std::move(policy));
}

const BridgePolicy& ChromiumWebControl::GetBridgePolicy() const {
  return impl_->bridge_.GetPolicy();
}

const PageCaller* ChromiumWebControl::CurrentCaller() const {
  return impl_->bridge_.CurrentCaller();
}

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
