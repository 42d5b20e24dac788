#include "wevlin/webcontrols/webkitgtk/WebKitGtkWebControl.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <random>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <cairo.h>
#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/webcontrols/internal/CallReader.h"
#include "wevlin/webcontrols/internal/PageBridge.h"
#include "wevlin/webcontrols/internal/Utf8Text.h"
#include "wevlin/webcontrols/webkitgtk/internal/PageScripts.h"
#include "wevlin/webcontrols/webkitgtk/internal/ScriptResult.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk {

namespace {

using Infrastructure::Base::internal::WriteLogLine;
using Infrastructure::Interop::Base64;
using Infrastructure::Interop::HostAPI;
using ScriptException = Infrastructure::Interop::IWebControl::ScriptException;
using WebControls::BridgePolicy;
using WebControls::PageCaller;
using WebControls::PageDialog;
using WebControls::PageDialogAnswer;
using WebControls::internal::IsValidUtf8;
using WebControls::internal::PageBridge;
using WebControls::internal::ToValidUtf8;

constexpr char kControlName[] = "WebKitGtkWebControl";

// The script message handlers through which the page's calls and, when they
// are logged, its console messages reach the host.
constexpr char kCallHandler[] = "wevlinHostCall";
constexpr char kConsoleHandler[] = "wevlinConsole";

// RunUntil checks its condition at least this often.
constexpr std::chrono::milliseconds kPollInterval{10};

// PumpEvents dispatches at most this many batches of ready sources, so that
// a source that is always ready (an animation, say) cannot hold it.
constexpr int kMaxPumpIterations = 1000;

// A worker thread waits this much longer than the script time-out, for the
// main thread to start its script.
constexpr std::chrono::milliseconds kWorkerMargin{1000};

// Room for the call format's own text around a call's texts, in UTF-16 units.
constexpr std::size_t kMessageRoom = std::size_t{1024} * 1024;

// Returns 128 random bits as 32 hexadecimal digits.
std::string NewKey() {
  static const char kHex[] = "0123456789abcdef";
  std::random_device device;
  std::string key;
  for (int word = 0; word < 4; ++word) {
    std::uint32_t bits = device();
    for (int digit = 0; digit < 8; ++digit) {
      key += kHex[bits & 0xFU];
      bits >>= 4U;
    }
  }
  return key;
}

// Returns `text` as a JavaScript string literal (a JSON string).
std::string ScriptString(const std::string& text) { return nlohmann::json(text).dump(); }

// The shim's transport in this control (webkit-transport.js), called with the
// call handler's name and the control's key.
std::string ShimTransport(const std::string& key) {
  return "(() => {\nconst transport = " + std::string(internal::WebKitTransportScript()) +
         "\nreturn transport(" + ScriptString(kCallHandler) + ", " + ScriptString(key) + ");\n})()";
}

// The console hook (webkit-console.js), called with the console handler's
// name.
std::string ConsoleHookSource() {
  return "(() => {\nconst hook = " + std::string(internal::WebKitConsoleScript()) + "\nhook(" +
         ScriptString(kConsoleHandler) + ");\n})();\n";
}

std::string TerminationText(WebKitWebProcessTerminationReason reason) {
  switch (reason) {
    case WEBKIT_WEB_PROCESS_CRASHED:
      return "crashed";
    case WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT:
      return "exceeded its memory limit";
    case WEBKIT_WEB_PROCESS_TERMINATED_BY_API:
      return "was terminated";
  }
  return "was terminated";
}

std::string DialogType(WebKitScriptDialogType type) {
  switch (type) {
    case WEBKIT_SCRIPT_DIALOG_ALERT:
      return "alert";
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
      return "confirm";
    case WEBKIT_SCRIPT_DIALOG_PROMPT:
      return "prompt";
    case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
      return "beforeunload";
  }
  return "alert";
}

std::string TextOf(const char* text) { return text == nullptr ? std::string() : text; }

// Drops the control's reference to a pending reply.
struct ReplyUnref {
  void operator()(WebKitScriptMessageReply* reply) const {
    webkit_script_message_reply_unref(reply);
  }
};
using ReplyRef = std::unique_ptr<WebKitScriptMessageReply, ReplyUnref>;

// Drops the control's reference to a script context.
struct ContextUnref {
  void operator()(JSCContext* context) const { g_object_unref(context); }
};
using ContextRef = std::unique_ptr<JSCContext, ContextUnref>;

// Something the view reported, waiting to be delivered.
struct ViewEvent {
  enum class Kind { LoadFinished, Call, LogLine };
  Kind kind = Kind::LoadFinished;
  // The line of a LogLine: what the view reported is logged when it is
  // delivered, in order with the loads and calls around it.
  std::string line;
  PageBridge::Call call;
  PageCaller caller;
  ReplyRef reply;
  // The script context the call's message came in, in which its answer is
  // made.
  ContextRef context;
};

// One script of the host on its way through the view, shared by the thread
// that waits for it and the main thread that runs it.
struct ScriptRun {
  std::mutex mutex;
  std::condition_variable changed;
  std::string script;
  bool done = false;
  bool ok = false;
  // The value when ok, else the exception's message.
  std::string text;
  std::string details;

  // Settles the run, unless it is settled already; returns whether it was
  // this call that settled it.
  bool Finish(bool succeeded, std::string value, std::string where) {
    {
      std::lock_guard<std::mutex> lock(mutex);
      if (done) return false;
      done = true;
      ok = succeeded;
      text = std::move(value);
      details = std::move(where);
    }
    changed.notify_all();
    return true;
  }

  bool IsDone() {
    std::lock_guard<std::mutex> lock(mutex);
    return done;
  }
};

}  // namespace

class WebKitGtkWebControl::Impl {
 public:
  explicit Impl(WebKitGtkOptions options);
  ~Impl();

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void Navigate(const std::string& target);
  std::string ExecuteScript(std::string script);
  void AddLoadObserver(ILoadObserver* observer);
  void RemoveLoadObserver(ILoadObserver* observer);
  void SetBridgePolicy(BridgePolicy policy);
  std::size_t PumpEvents();
  bool RunUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);
  void SaveScreenshot(const std::string& path);
  bool IsRunning() const { return endedReason_.empty(); }

  WebKitGtkOptions options_;
  PageBridge bridge_{kControlName};
  WebKitWebView* view_ = nullptr;

 private:
  // What a callback that may run after the control is gone needs: the
  // control while it lives, and the thing it was started for.
  struct RunStart {
    std::weak_ptr<Impl*> self;
    std::shared_ptr<ScriptRun> run;
  };

  static void OnLoadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer data);
  static gboolean OnLoadFailed(WebKitWebView* view, WebKitLoadEvent event, gchar* uri,
                               GError* error, gpointer data);
  static void OnWebProcessTerminated(WebKitWebView* view, WebKitWebProcessTerminationReason reason,
                                     gpointer data);
  static gboolean OnScriptDialog(WebKitWebView* view, WebKitScriptDialog* dialog, gpointer data);
  static gboolean OnCallMessage(WebKitUserContentManager* manager, JSCValue* value,
                                WebKitScriptMessageReply* reply, gpointer data);
  static gboolean OnConsoleMessage(WebKitUserContentManager* manager, JSCValue* value,
                                   WebKitScriptMessageReply* reply, gpointer data);
  static gboolean OnDeliveryIdle(gpointer data);
  static gboolean OnStartWorkerRun(gpointer data);
  static void OnScriptDone(GObject* source, GAsyncResult* result, gpointer data);

  void InstallScripts();
  PageCaller TopCaller() const;
  std::string EndedText() const;
  void Enqueue(ViewEvent event);
  void QueueLogLine(std::string line);
  void ScheduleDelivery();
  std::size_t DeliverQueued();
  void Deliver(ViewEvent& event);
  void NotifyLoadObservers();
  static void Reply(JSCContext* context, WebKitScriptMessageReply* reply, bool ok,
                    std::string text);
  void Refuse(JSCContext* context, WebKitScriptMessageReply* reply, const std::string& what,
              const std::string& why, const std::exception& error);
  void HandleCall(JSCValue* value, WebKitScriptMessageReply* reply);
  // Reads the caller in front of a call, and moves `message` past it.
  static bool ReadCaller(std::string_view& message, PageCaller& caller);
  void AnswerDialog(WebKitScriptDialog* dialog);
  void WebProcessEnded(WebKitWebProcessTerminationReason reason);
  void StartScript(const std::shared_ptr<ScriptRun>& run);
  std::string ExecuteOnMainThread(std::string script);
  std::string ExecuteFromWorker(std::string script);
  bool WaitOnMainThread(const std::function<bool()>& done, std::chrono::milliseconds timeout);
  void IterateOnce(std::chrono::milliseconds timeout);
  static std::string Result(ScriptRun& run);

  std::string key_;
  std::thread::id mainThread_;
  WebKitUserContentManager* content_ = nullptr;
  GCancellable* cancellable_ = nullptr;
  std::vector<gulong> viewHandlers_;
  std::vector<gulong> contentHandlers_;
  // The sources of the user scripts in place, one after the other.
  std::string installedScripts_;
  std::deque<ViewEvent> events_;
  std::vector<ILoadObserver*> observers_;
  bool delivering_ = false;
  // How many waits for the view (a script, a screenshot) the main thread is
  // in; nothing is delivered meanwhile.
  int waits_ = 0;
  guint deliverySource_ = 0;
  std::size_t delivered_ = 0;
  // Why the view's web process ended ("" while it runs).
  std::string endedReason_;
  // Scripts started in the view and not answered yet (main thread only).
  std::vector<std::shared_ptr<ScriptRun>> inFlight_;
  // The control as callbacks that may outlive it see it, and the scripts of
  // worker threads waiting for an answer; guarded by workerMutex_.
  std::mutex workerMutex_;
  std::shared_ptr<Impl*> self_;
  std::vector<std::shared_ptr<ScriptRun>> workerRuns_;
};

WebKitGtkWebControl::Impl::Impl(WebKitGtkOptions options)
    : options_(std::move(options)),
      key_(NewKey()),
      mainThread_(std::this_thread::get_id()),
      content_(webkit_user_content_manager_new()),
      self_(std::make_shared<Impl*>(this)) {
  bridge_.SetPolicy(options_.bridgePolicy);
  bridge_.SetMaxCallBytes(options_.maxCallBytes);

  webkit_user_content_manager_register_script_message_handler_with_reply(content_, kCallHandler,
                                                                         nullptr);
  contentHandlers_.push_back(g_signal_connect(
      content_, (std::string("script-message-with-reply-received::") + kCallHandler).c_str(),
      G_CALLBACK(&Impl::OnCallMessage), this));
  if (options_.logConsoleMessages) {
    webkit_user_content_manager_register_script_message_handler_with_reply(
        content_, kConsoleHandler, nullptr);
    contentHandlers_.push_back(g_signal_connect(
        content_, (std::string("script-message-with-reply-received::") + kConsoleHandler).c_str(),
        G_CALLBACK(&Impl::OnConsoleMessage), this));
  }

  view_ = WEBKIT_WEB_VIEW(webkit_web_view_new_with_user_content_manager(content_));
  // The view starts floating; the control holds a reference of its own.
  g_object_ref_sink(view_);
  WebKitSettings* settings = webkit_web_view_get_settings(view_);
  webkit_settings_set_enable_developer_extras(settings,
                                              options_.enableDeveloperExtras ? TRUE : FALSE);
  viewHandlers_.push_back(
      g_signal_connect(view_, "load-changed", G_CALLBACK(&Impl::OnLoadChanged), this));
  viewHandlers_.push_back(
      g_signal_connect(view_, "load-failed", G_CALLBACK(&Impl::OnLoadFailed), this));
  viewHandlers_.push_back(g_signal_connect(view_, "web-process-terminated",
                                           G_CALLBACK(&Impl::OnWebProcessTerminated), this));
  viewHandlers_.push_back(
      g_signal_connect(view_, "script-dialog", G_CALLBACK(&Impl::OnScriptDialog), this));

  cancellable_ = g_cancellable_new();
  InstallScripts();
}

WebKitGtkWebControl::Impl::~Impl() {
  const std::string gone = "The web control was destroyed";
  {
    std::lock_guard<std::mutex> lock(workerMutex_);
    self_.reset();
    for (const std::shared_ptr<ScriptRun>& run : workerRuns_) run->Finish(false, gone, {});
    workerRuns_.clear();
  }
  for (const std::shared_ptr<ScriptRun>& run : inFlight_) run->Finish(false, gone, {});
  inFlight_.clear();
  g_cancellable_cancel(cancellable_);
  if (deliverySource_ != 0) g_source_remove(deliverySource_);
  // A view destroyed with its window has dropped its handlers already.
  for (const gulong handler : viewHandlers_) {
    if (g_signal_handler_is_connected(view_, handler) != FALSE) {
      g_signal_handler_disconnect(view_, handler);
    }
  }
  for (const gulong handler : contentHandlers_) {
    if (g_signal_handler_is_connected(content_, handler) != FALSE) {
      g_signal_handler_disconnect(content_, handler);
    }
  }
  webkit_user_content_manager_unregister_script_message_handler(content_, kCallHandler);
  if (options_.logConsoleMessages) {
    webkit_user_content_manager_unregister_script_message_handler(content_, kConsoleHandler);
  }
  for (ViewEvent& event : events_) {
    if (event.reply) {
      webkit_script_message_reply_return_error_message(event.reply.get(), gone.c_str());
    }
  }
  events_.clear();
  g_object_unref(cancellable_);
  g_object_unref(view_);
  g_object_unref(content_);
}

// ---- Setting up the page ---------------------------------------------------

void WebKitGtkWebControl::Impl::InstallScripts() {
  const std::string shim = bridge_.ShimSource(ShimTransport(key_));
  const std::string console = options_.logConsoleMessages ? ConsoleHookSource() : std::string();
  std::string scripts = console + shim;
  // The same scripts are in place already: nothing to change.
  if (scripts == installedScripts_) return;
  installedScripts_ = std::move(scripts);
  webkit_user_content_manager_remove_all_scripts(content_);
  if (!console.empty()) {
    WebKitUserScript* hook =
        webkit_user_script_new(console.c_str(), WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
                               WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
    webkit_user_content_manager_add_script(content_, hook);
    webkit_user_script_unref(hook);
  }
  // Frames get the bridge only when the policy lets frames reach the host.
  const WebKitUserContentInjectedFrames frames = bridge_.GetPolicy().AllowsSubframes()
                                                     ? WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES
                                                     : WEBKIT_USER_CONTENT_INJECT_TOP_FRAME;
  WebKitUserScript* script = webkit_user_script_new(
      shim.c_str(), frames, WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
  webkit_user_content_manager_add_script(content_, script);
  webkit_user_script_unref(script);
}

void WebKitGtkWebControl::Impl::SetBridgePolicy(BridgePolicy policy) {
  bridge_.SetPolicy(std::move(policy));
  InstallScripts();
}

PageCaller WebKitGtkWebControl::Impl::TopCaller() const {
  PageCaller caller;
  caller.url = TextOf(webkit_web_view_get_uri(view_));
  caller.origin = BridgePolicy::OriginOf(caller.url);
  caller.topFrame = true;
  return caller;
}

std::string WebKitGtkWebControl::Impl::EndedText() const {
  return "The page's web process ended (" + endedReason_ + ")";
}

void WebKitGtkWebControl::Impl::Navigate(const std::string& target) {
  const std::string url = ToValidUtf8(target);
  // The documents of the new address get the bridge before it loads.
  bridge_.SetNavigatedUrl(url);
  InstallScripts();
  // The load starts a new web process when the last one ended.
  endedReason_.clear();
  webkit_web_view_load_uri(view_, url.c_str());
}

// ---- What the view reports --------------------------------------------------

void WebKitGtkWebControl::Impl::OnLoadChanged(WebKitWebView* /*view*/, WebKitLoadEvent event,
                                              gpointer data) {
  auto* self = static_cast<Impl*>(data);
  // The control's own blank page is not the application's.
  if (event != WEBKIT_LOAD_FINISHED || !self->bridge_.HasNavigated()) return;
  ViewEvent loaded;
  loaded.kind = ViewEvent::Kind::LoadFinished;
  self->Enqueue(std::move(loaded));
}

gboolean WebKitGtkWebControl::Impl::OnLoadFailed(WebKitWebView* /*view*/, WebKitLoadEvent /*event*/,
                                                 gchar* uri, GError* error, gpointer data) {
  // A load that a later one replaced did not fail.
  if (g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) != FALSE) {
    return FALSE;
  }
  static_cast<Impl*>(data)->QueueLogLine(
      std::string(kControlName) + ": navigation to " + TextOf(uri) +
      " failed: " + (error != nullptr ? TextOf(error->message) : std::string()));
  // WebKit goes on to show its error page, and the load ends as any other.
  return FALSE;
}

void WebKitGtkWebControl::Impl::OnWebProcessTerminated(WebKitWebView* /*view*/,
                                                       WebKitWebProcessTerminationReason reason,
                                                       gpointer data) {
  static_cast<Impl*>(data)->WebProcessEnded(reason);
}

void WebKitGtkWebControl::Impl::WebProcessEnded(WebKitWebProcessTerminationReason reason) {
  endedReason_ = TerminationText(reason);
  QueueLogLine(std::string(kControlName) + ": the page's web process ended (" + endedReason_ + ")");
  const std::string text = EndedText();
  // Scripts under way get no answer from the view any more.
  for (const std::shared_ptr<ScriptRun>& run : inFlight_) run->Finish(false, text, {});
  inFlight_.clear();
  // Nobody waits for the answers of the page's calls.
  std::deque<ViewEvent> kept;
  for (ViewEvent& event : events_) {
    if (event.kind == ViewEvent::Kind::Call) {
      webkit_script_message_reply_return_error_message(event.reply.get(), text.c_str());
    } else {
      kept.push_back(std::move(event));
    }
  }
  events_.swap(kept);
}

gboolean WebKitGtkWebControl::Impl::OnScriptDialog(WebKitWebView* /*view*/,
                                                   WebKitScriptDialog* dialog, gpointer data) {
  static_cast<Impl*>(data)->AnswerDialog(dialog);
  // Handled: no dialog of GTK ever shows.
  return TRUE;
}

void WebKitGtkWebControl::Impl::AnswerDialog(WebKitScriptDialog* dialog) {
  const WebKitScriptDialogType type = webkit_script_dialog_get_dialog_type(dialog);
  PageDialog page;
  page.type = DialogType(type);
  page.message = TextOf(webkit_script_dialog_get_message(dialog));
  if (type == WEBKIT_SCRIPT_DIALOG_PROMPT) {
    page.defaultPrompt = TextOf(webkit_script_dialog_prompt_get_default_text(dialog));
  }
  page.url = TextOf(webkit_web_view_get_uri(view_));
  PageDialogAnswer answer;
  answer.accept = type == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM;
  if (options_.dialogHandler) {
    try {
      answer = options_.dialogHandler(page);
    } catch (...) {
      // A failing hook leaves the default answer.
      answer = PageDialogAnswer();
      answer.accept = type == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM;
    }
  }
  if (type == WEBKIT_SCRIPT_DIALOG_CONFIRM || type == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
    webkit_script_dialog_confirm_set_confirmed(dialog, answer.accept ? TRUE : FALSE);
  } else if (type == WEBKIT_SCRIPT_DIALOG_PROMPT && answer.accept) {
    // A prompt left without text is a dismissed one: it returns null.
    webkit_script_dialog_prompt_set_text(dialog, ToValidUtf8(answer.promptText).c_str());
  }
  QueueLogLine(std::string(kControlName) + ": answered the page's " + page.type +
               " dialog: " + (answer.accept ? "accepted" : "dismissed"));
}

gboolean WebKitGtkWebControl::Impl::OnCallMessage(WebKitUserContentManager* /*manager*/,
                                                  JSCValue* value, WebKitScriptMessageReply* reply,
                                                  gpointer data) {
  static_cast<Impl*>(data)->HandleCall(value, reply);
  return TRUE;
}

void WebKitGtkWebControl::Impl::HandleCall(JSCValue* value, WebKitScriptMessageReply* reply) {
  // WebKit does not say which document posted: the injected transport does,
  // behind the key that keeps out frames and scripts that post to the handler
  // themselves.
  if (jsc_value_is_string(value) == FALSE) {
    Refuse(jsc_value_get_context(value), reply, "a message", "not a call",
           std::runtime_error("The host does not serve this message"));
    return;
  }
  // A message far beyond the limit is refused before its text is copied: its
  // length in UTF-16 units is read in place. Escaping can make the JSON of a
  // call several times longer than its texts, whose size the bridge checks.
  const std::size_t limit = bridge_.GetMaxCallBytes();
  JSCValue* lengthOf =
      jsc_context_evaluate(jsc_value_get_context(value), "(text) => text.length", -1);
  JSCValue* arguments[] = {value};
  JSCValue* length = jsc_value_function_callv(lengthOf, 1, arguments);
  const double units = jsc_value_is_number(length) != FALSE ? jsc_value_to_double(length) : 0;
  g_object_unref(length);
  g_object_unref(lengthOf);
  const double maxUnits = 8.0 * static_cast<double>(limit) + static_cast<double>(kMessageRoom);
  if (units > maxUnits) {
    Refuse(jsc_value_get_context(value), reply,
           "a call of " + std::to_string(static_cast<std::uint64_t>(units)) + " characters",
           "over the size limit",
           std::length_error("The call takes more than the limit of " + std::to_string(limit) +
                             " bytes"));
    return;
  }
  // The call is read straight from the engine's UTF-8 copy of the text.
  GBytes* bytes = jsc_value_to_string_as_bytes(value);
  gsize size = 0;
  const auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
  std::string_view message = data != nullptr ? std::string_view(data, size) : std::string_view();
  bool keyed = message.substr(0, key_.size()) == key_;
  if (keyed) message.remove_prefix(key_.size());

  PageCaller caller;
  if (keyed && !ReadCaller(message, caller)) keyed = false;
  PageBridge::Call call;
  const bool isCall =
      WebControls::internal::CallReader::Read(message, call.id, call.function, call.args);
  g_bytes_unref(bytes);
  if (!keyed) {
    Refuse(jsc_value_get_context(value), reply, isCall ? call.function : std::string("a message"),
           "without the bridge's key", std::runtime_error("The host does not serve this document"));
    return;
  }
  if (!isCall) {
    QueueLogLine(std::string(kControlName) + ": ignored a malformed call of the page");
    Reply(jsc_value_get_context(value), reply, false, "The host cannot read the call");
    return;
  }
  ViewEvent event;
  event.kind = ViewEvent::Kind::Call;
  event.call = std::move(call);
  event.caller = std::move(caller);
  event.reply.reset(webkit_script_message_reply_ref(reply));
  event.context.reset(JSC_CONTEXT(g_object_ref(jsc_value_get_context(value))));
  Enqueue(std::move(event));
}

bool WebKitGtkWebControl::Impl::ReadCaller(std::string_view& message, PageCaller& caller) {
  // "T" or "F", the origin, "\n", the URL, "\n", then the call.
  if (message.empty() || (message[0] != 'T' && message[0] != 'F')) return false;
  const std::size_t originEnd = message.find('\n', 1);
  if (originEnd == std::string_view::npos) return false;
  const std::size_t urlEnd = message.find('\n', originEnd + 1);
  if (urlEnd == std::string_view::npos) return false;
  caller.topFrame = message[0] == 'T';
  caller.origin = BridgePolicy::OriginOf(std::string(message.substr(1, originEnd - 1)));
  caller.url = std::string(message.substr(originEnd + 1, urlEnd - originEnd - 1));
  message.remove_prefix(urlEnd + 1);
  return true;
}

void WebKitGtkWebControl::Impl::Refuse(JSCContext* context, WebKitScriptMessageReply* reply,
                                       const std::string& what, const std::string& why,
                                       const std::exception& error) {
  const PageCaller top = TopCaller();
  QueueLogLine(std::string(kControlName) + ": refused " + what + " " + why + " (in " + top.url +
               ")");
  Reply(context, reply, true,
        Infrastructure::Interop::JsonSerializationHelper::GetJsonForException(error));
}

void WebKitGtkWebControl::Impl::Reply(JSCContext* context, WebKitScriptMessageReply* reply, bool ok,
                                      std::string text) {
  // The shim decodes the bytes as UTF-8, with U+FFFD for ill-formed ones. The
  // text is encoded in place, and freed once the script value has its copy,
  // so that a big answer is held at most twice here.
  Base64::EncodeString(text, text);
  GPtrArray* items = g_ptr_array_new_with_free_func(g_object_unref);
  g_ptr_array_add(items, jsc_value_new_boolean(context, ok ? TRUE : FALSE));
  g_ptr_array_add(items, jsc_value_new_string(context, text.c_str()));
  std::string().swap(text);
  JSCValue* answer = jsc_value_new_array_from_garray(context, items);
  g_ptr_array_unref(items);
  webkit_script_message_reply_return_value(reply, answer);
  g_object_unref(answer);
}

gboolean WebKitGtkWebControl::Impl::OnConsoleMessage(WebKitUserContentManager* /*manager*/,
                                                     JSCValue* value,
                                                     WebKitScriptMessageReply* /*reply*/,
                                                     gpointer data) {
  if (jsc_value_is_string(value) == FALSE) return TRUE;
  const std::string message = internal::ScriptResultText(value);
  const std::size_t newline = message.find('\n');
  if (newline == std::string::npos) return TRUE;
  static_cast<Impl*>(data)->QueueLogLine("console." + message.substr(0, newline) + ": " +
                                         message.substr(newline + 1));
  return TRUE;
}

// ---- Delivery ----------------------------------------------------------------

void WebKitGtkWebControl::Impl::Enqueue(ViewEvent event) {
  events_.push_back(std::move(event));
  ScheduleDelivery();
}

void WebKitGtkWebControl::Impl::QueueLogLine(std::string line) {
  ViewEvent event;
  event.kind = ViewEvent::Kind::LogLine;
  event.line = std::move(line);
  Enqueue(std::move(event));
}

void WebKitGtkWebControl::Impl::ScheduleDelivery() {
  if (deliverySource_ != 0 || events_.empty() || delivering_ || waits_ > 0) return;
  deliverySource_ = g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, &Impl::OnDeliveryIdle, this, nullptr);
}

gboolean WebKitGtkWebControl::Impl::OnDeliveryIdle(gpointer data) {
  auto* self = static_cast<Impl*>(data);
  self->deliverySource_ = 0;
  self->DeliverQueued();
  return G_SOURCE_REMOVE;
}

std::size_t WebKitGtkWebControl::Impl::DeliverQueued() {
  if (delivering_ || waits_ > 0) return 0;
  delivering_ = true;
  std::deque<ViewEvent> batch;
  batch.swap(events_);
  try {
    for (ViewEvent& event : batch) {
      ++delivered_;
      Deliver(event);
    }
  } catch (...) {
    delivering_ = false;
    throw;
  }
  delivering_ = false;
  // What arrived meanwhile goes out with the next round.
  ScheduleDelivery();
  return batch.size();
}

void WebKitGtkWebControl::Impl::Deliver(ViewEvent& event) {
  switch (event.kind) {
    case ViewEvent::Kind::LoadFinished:
      NotifyLoadObservers();
      break;
    case ViewEvent::Kind::LogLine:
      WriteLogLine(event.line);
      break;
    case ViewEvent::Kind::Call: {
      PageBridge::Answer answer = bridge_.Serve(std::move(event.call), event.caller);
      Reply(event.context.get(), event.reply.get(), answer.ok, std::move(answer.text));
      break;
    }
  }
}

void WebKitGtkWebControl::Impl::NotifyLoadObservers() {
  const std::vector<ILoadObserver*> observers = observers_;
  for (ILoadObserver* observer : observers) {
    // An observer removed by an earlier one in this round is not told.
    if (std::find(observers_.begin(), observers_.end(), observer) == observers_.end()) continue;
    try {
      observer->OnLoadCompleted();
    } catch (const std::exception& error) {
      WriteLogLine(std::string(kControlName) + ": a load observer failed: " + error.what());
    } catch (const ScriptException& error) {
      WriteLogLine(std::string(kControlName) + ": a load observer failed: " + error.message);
    } catch (...) {
      WriteLogLine(std::string(kControlName) + ": a load observer failed");
    }
  }
}

std::size_t WebKitGtkWebControl::Impl::PumpEvents() {
  if (delivering_ || waits_ > 0) return 0;
  const std::size_t before = delivered_;
  for (int i = 0; i < kMaxPumpIterations && g_main_context_iteration(nullptr, FALSE) != FALSE;
       ++i) {
  }
  DeliverQueued();
  return delivered_ - before;
}

void WebKitGtkWebControl::Impl::IterateOnce(std::chrono::milliseconds timeout) {
  // A timer wakes the iteration when nothing else does.
  bool fired = false;
  GSource* timer =
      g_timeout_source_new(static_cast<guint>(std::max<std::int64_t>(timeout.count(), 0)));
  g_source_set_callback(
      timer,
      [](gpointer flag) -> gboolean {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
      },
      &fired, nullptr);
  g_source_attach(timer, nullptr);
  g_main_context_iteration(nullptr, TRUE);
  if (!fired) g_source_destroy(timer);
  g_source_unref(timer);
}

bool WebKitGtkWebControl::Impl::RunUntil(const std::function<bool()>& condition,
                                         std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    PumpEvents();
    if (condition()) return true;
    const auto now = std::chrono::steady_clock::now();
    if (now >= deadline) return false;
    IterateOnce(std::min(kPollInterval,
                         std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now)));
  }
}

bool WebKitGtkWebControl::Impl::WaitOnMainThread(const std::function<bool()>& done,
                                                 std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  ++waits_;
  bool finished = done();
  while (!finished) {
    const auto now = std::chrono::steady_clock::now();
    if (now >= deadline) break;
    IterateOnce(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now) +
                std::chrono::milliseconds(1));
    finished = done();
  }
  --waits_;
  // Events that arrived meanwhile are delivered after the wait.
  ScheduleDelivery();
  return finished;
}

// ---- Scripts of the host ------------------------------------------------------

void WebKitGtkWebControl::Impl::StartScript(const std::shared_ptr<ScriptRun>& run) {
  if (run->IsDone()) return;
  if (!endedReason_.empty()) {
    run->Finish(false, EndedText(), "The script was not run.");
    return;
  }
  const PageCaller top = TopCaller();
  const std::string refusal = bridge_.ScriptRefusal(top);
  if (!refusal.empty()) {
    run->Finish(false, refusal, "The script was not run in " + top.url + ".");
    return;
  }
  // Valid text, the usual case, goes to the engine without a copy of ours;
  // the run gives its script up either way.
  std::string source = std::move(run->script);
  run->script = std::string();
  if (!IsValidUtf8(source)) source = ToValidUtf8(source);
  inFlight_.push_back(run);
  RunStart* start = nullptr;
  {
    std::lock_guard<std::mutex> lock(workerMutex_);
    start = new RunStart{self_, run};
  }
  webkit_web_view_evaluate_javascript(view_, source.data(), static_cast<gssize>(source.size()),
                                      nullptr, nullptr, cancellable_, &Impl::OnScriptDone, start);
}

void WebKitGtkWebControl::Impl::OnScriptDone(GObject* source, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<RunStart> start(static_cast<RunStart*>(data));
  GError* error = nullptr;
  JSCValue* value =
      webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(source), result, &error);
  if (value != nullptr) {
    start->run->Finish(true, internal::ScriptResultText(value), {});
    g_object_unref(value);
  } else if (internal::IsUncopyableValue(error)) {
    // The script ran; its value (a function, a Promise, a DOM node) stays in
    // the page.
    start->run->Finish(true, std::string(), {});
  } else {
    const ScriptException failure = internal::ScriptFailure(error);
    start->run->Finish(false, failure.message, failure.details);
  }
  if (error != nullptr) g_error_free(error);
  // The control's list of scripts under way, while the control lives; it
  // runs on this thread, the main thread.
  const std::shared_ptr<Impl*> self = start->self.lock();
  if (self) {
    std::vector<std::shared_ptr<ScriptRun>>& inFlight = (*self)->inFlight_;
    inFlight.erase(std::remove(inFlight.begin(), inFlight.end(), start->run), inFlight.end());
  }
}

std::string WebKitGtkWebControl::Impl::Result(ScriptRun& run) {
  std::lock_guard<std::mutex> lock(run.mutex);
  if (!run.ok) throw ScriptException(run.text, run.details);
  // Read once: the value is handed over, not copied.
  return std::move(run.text);
}

std::string WebKitGtkWebControl::Impl::ExecuteScript(std::string script) {
  if (script.size() > bridge_.GetMaxCallBytes()) {
    throw ScriptException("The script takes " + std::to_string(script.size()) +
                              " bytes, more than the limit of " +
                              std::to_string(bridge_.GetMaxCallBytes()),
                          "The script was not run.");
  }
  if (std::this_thread::get_id() == mainThread_) return ExecuteOnMainThread(std::move(script));
  return ExecuteFromWorker(std::move(script));
}

std::string WebKitGtkWebControl::Impl::ExecuteOnMainThread(std::string script) {
  auto run = std::make_shared<ScriptRun>();
  run->script = std::move(script);
  StartScript(run);
  if (!WaitOnMainThread([&run] { return run->IsDone(); }, options_.scriptTimeout)) {
    run->Finish(false,
                "The script did not finish within " +
                    std::to_string(options_.scriptTimeout.count()) + " ms",
                "The page's web process was ended to stop it; the next Navigate loads a page "
                "again.");
    inFlight_.erase(std::remove(inFlight_.begin(), inFlight_.end(), run), inFlight_.end());
    // WebKit stops a running script only with its web process; a page that
    // runs one for this long holds the view, and every later script, anyway.
    if (endedReason_.empty()) webkit_web_view_terminate_web_process(view_);
  }
  return Result(*run);
}

std::string WebKitGtkWebControl::Impl::ExecuteFromWorker(std::string script) {
  auto run = std::make_shared<ScriptRun>();
  run->script = std::move(script);
  auto* start = new RunStart{{}, run};
  {
    std::lock_guard<std::mutex> lock(workerMutex_);
    if (!self_) {
      delete start;
      throw ScriptException("The web control was destroyed", std::string());
    }
    start->self = self_;
    workerRuns_.push_back(run);
  }
  // An idle source of the default main context: the main thread starts the
  // script when it next iterates, whichever loop it is in.
  GSource* idle = g_idle_source_new();
  g_source_set_priority(idle, G_PRIORITY_DEFAULT);
  g_source_set_callback(idle, &Impl::OnStartWorkerRun, start,
                        [](gpointer data) { delete static_cast<RunStart*>(data); });
  g_source_attach(idle, nullptr);
  g_source_unref(idle);

  const auto timeout = options_.scriptTimeout + kWorkerMargin;
  {
    std::unique_lock<std::mutex> lock(run->mutex);
    run->changed.wait_for(lock, timeout, [&run] { return run->done; });
  }
  run->Finish(
      false,
      "The script did not finish within " + std::to_string(options_.scriptTimeout.count()) + " ms",
      "The host stopped waiting; the script may still run in the page.");
  {
    std::lock_guard<std::mutex> lock(workerMutex_);
    workerRuns_.erase(std::remove(workerRuns_.begin(), workerRuns_.end(), run), workerRuns_.end());
  }
  return Result(*run);
}

gboolean WebKitGtkWebControl::Impl::OnStartWorkerRun(gpointer data) {
  auto* start = static_cast<RunStart*>(data);
  const std::shared_ptr<Impl*> self = start->self.lock();
  if (self) (*self)->StartScript(start->run);
  return G_SOURCE_REMOVE;
}

// ---- The rest -------------------------------------------------------------------

void WebKitGtkWebControl::Impl::AddLoadObserver(ILoadObserver* observer) {
  if (observer == nullptr) return;
  if (std::find(observers_.begin(), observers_.end(), observer) != observers_.end()) return;
  observers_.push_back(observer);
}

void WebKitGtkWebControl::Impl::RemoveLoadObserver(ILoadObserver* observer) {
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void WebKitGtkWebControl::Impl::SaveScreenshot(const std::string& path) {
  if (!endedReason_.empty()) throw WebKitGtkError(EndedText());
  struct Shot {
    bool done = false;
    cairo_surface_t* surface = nullptr;
    std::string error;
  };
  // Shared with the callback, which may come after a wait that gave up.
  auto* shot = new Shot();
  webkit_web_view_get_snapshot(
      view_, WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, cancellable_,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        auto* state = static_cast<Shot*>(data);
        GError* error = nullptr;
        cairo_surface_t* surface =
            webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(source), result, &error);
        if (error != nullptr) {
          state->error = TextOf(error->message);
          g_error_free(error);
        }
        if (state->done) {
          // Nobody waits any more.
          if (surface != nullptr) cairo_surface_destroy(surface);
          delete state;
          return;
        }
        state->surface = surface;
        state->done = true;
      },
      shot);
  const bool finished = WaitOnMainThread(
      [this, shot] { return shot->done || !endedReason_.empty(); }, options_.scriptTimeout);
  if (!finished || !shot->done) {
    // The callback frees the state when it comes.
    shot->done = true;
    if (!endedReason_.empty()) throw WebKitGtkError(EndedText());
    throw WebKitGtkError("The view did not take a picture within " +
                         std::to_string(options_.scriptTimeout.count()) + " ms");
  }
  cairo_surface_t* surface = shot->surface;
  const std::string error = shot->error;
  delete shot;
  if (surface == nullptr) {
    throw WebKitGtkError("The view cannot take a picture of the page" +
                         (error.empty() ? std::string() : ": " + error));
  }
  const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
  cairo_surface_destroy(surface);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw WebKitGtkError("Cannot write the screenshot to " + path + ": " +
                         cairo_status_to_string(status));
  }
}

// ---- WebKitGtkWebControl -----------------------------------------------------------

WebKitGtkWebControl::WebKitGtkWebControl() : WebKitGtkWebControl(WebKitGtkOptions()) {}

WebKitGtkWebControl::WebKitGtkWebControl(WebKitGtkOptions options)
    : impl_(std::make_unique<Impl>(std::move(options))) {}

WebKitGtkWebControl::~WebKitGtkWebControl() = default;

GtkWidget* WebKitGtkWebControl::Widget() const { return GTK_WIDGET(impl_->view_); }

WebKitWebView* WebKitGtkWebControl::View() const { return impl_->view_; }

void WebKitGtkWebControl::Navigate(std::string target) { impl_->Navigate(target); }

std::string WebKitGtkWebControl::ExecuteScript(std::string script) {
  return impl_->ExecuteScript(std::move(script));
}

void WebKitGtkWebControl::AddLoadObserver(IWebControl::ILoadObserver* observer) {
  impl_->AddLoadObserver(observer);
}

void WebKitGtkWebControl::RemoveLoadObserver(IWebControl::ILoadObserver* observer) {
  impl_->RemoveLoadObserver(observer);
}

void WebKitGtkWebControl::SetHostAPI(HostAPI* hostApi) { impl_->bridge_.SetHostAPI(hostApi); }

HostAPI* WebKitGtkWebControl::GetHostAPI() const { return impl_->bridge_.GetHostAPI(); }

void WebKitGtkWebControl::SetBridgePolicy(BridgePolicy policy) {
  impl_->SetBridgePolicy(std::move(policy));
}

const BridgePolicy& WebKitGtkWebControl::GetBridgePolicy() const {
  return impl_->bridge_.GetPolicy();
}

const PageCaller* WebKitGtkWebControl::CurrentCaller() const {
  return impl_->bridge_.CurrentCaller();
}

std::size_t WebKitGtkWebControl::PumpEvents() { return impl_->PumpEvents(); }

bool WebKitGtkWebControl::RunUntil(const std::function<bool()>& condition,
                                   std::chrono::milliseconds timeout) {
  return impl_->RunUntil(condition, timeout);
}

void WebKitGtkWebControl::SaveScreenshot(const std::string& path) { impl_->SaveScreenshot(path); }

bool WebKitGtkWebControl::IsBrowserRunning() const { return impl_->IsRunning(); }

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk
