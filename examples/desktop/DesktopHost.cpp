#include "DesktopHost.h"

#include <glib.h>
#include <webkit2/webkit2.h>

#include <chrono>
#include <exception>
#include <stdexcept>
#include <utility>

namespace wevlin_desktop {

namespace {

namespace base = wevlin::Infrastructure::Base;
namespace core02 = wevlin::Infrastructure::Services::Core::_2014_02;
namespace refresh07 = wevlin::Infrastructure::Services::Refresh::_2014_07;
namespace session07 = wevlin::Infrastructure::Services::Session::_2014_07;

std::string Describe(const std::vector<core02::InteropObjRef>& objects) {
  std::string text;
  for (const auto& object : objects) {
    text += (text.empty() ? "" : ", ") + object.ObjId + " (" + object.ObjType + ")";
  }
  return text.empty() ? "nothing" : text;
}

bool CanTalk(interop::HostContentState state) {
  return state == interop::LoadedCanTalk || state == interop::LoggedIn;
}

}  // namespace

DesktopHost* DesktopHost::current_ = nullptr;

DesktopHost::DesktopHost(wevlin::WebControls::WebKitGtk::WebKitGtkWebControl& control,
                         DesktopWindow& window, const std::string& pageUrl)
    : control_(control),
      window_(window),
      mainThread_(std::this_thread::get_id()),
      alive_(std::make_shared<bool>(true)) {
  current_ = this;
  // The library's own log lines go to the list as well.
  base::SetLogSink([this](const std::string& line) {
    OnMainThread([this, line] { window_.AddEntry("wevlin", line); });
  });

  configuration_.Settings.emplace_back("HostType", "wevlin desktop");
  configuration_.Settings.emplace_back(
      "Toolkit", "GTK " + std::to_string(gtk_get_major_version()) + "." +
                     std::to_string(gtk_get_minor_version()) + ", WebKitGTK " +
                     std::to_string(webkit_get_major_version()) + "." +
                     std::to_string(webkit_get_minor_version()));
  configuration_.Settings.emplace_back("Locale", "en-GB");
  configuration_.Settings.emplace_back("Accent", "#2f7d5b");

  // The manager owns the services; the startup notification service is what
  // moves the page to LoggedIn.
  interop::HostManager* manager = interop::HostManager::TheInstance();
  manager->RegisterServices({new core02::StartupNotificationSvc(),
                             new core07::HostConfigurationSvc(this),
                             new core07::ClientStatusSvc(this),
                             new logging02::LoggerForwardSvc(&DesktopHost::ForwardLogEntry),
                             new soa02::AsyncSoaJsonMessageSvc(this)});
  manager->RegisterTargetConfig(new interop::TargetConfig("desktop", "Desktop page", pageUrl));
  target_ = manager->GetTargetConfig("desktop");

  instance_ = std::make_unique<interop::HostControlInstance>(&control_);
  api_ = std::make_unique<interop::HostAPI>(instance_.get());
  instance_->AddChangeListener(this);
  control_.SetHostAPI(api_.get());  // the page reaches it as globalThis.wevlinHost
}

DesktopHost::~DesktopHost() {
  // A worker's answer runs a script on the main thread, so the control's
  // events must flow while the workers finish.
  control_.RunUntil([this] { return busyWorkers_ == 0; }, std::chrono::seconds(10));
  {
    std::lock_guard<std::mutex> lock(workersMutex_);
    for (std::thread& worker : workers_) worker.join();
  }
  control_.SetHostAPI(nullptr);
  instance_->RemoveChangeListener(this);
  api_.reset();
  instance_.reset();
  base::SetLogSink(nullptr);
  *alive_ = false;
  current_ = nullptr;
}

void DesktopHost::LaunchPage() {
  progress_ = Progress();
  const std::string url = target_->GetTarget();
  window_.AddEntry("host", "opens " + url.substr(url.rfind('/') + 1));
  instance_->LaunchToTarget(target_);
}

void DesktopHost::SendSession() {
  session07::SessionMsg session;
  session.SessionObjects.emplace_back("inventory", "desk.user", "User");
  session.Preferences.emplace_back("units", std::vector<std::string>{"boxes"});
  CallPage("sent a session: " + Describe(session.SessionObjects) + "; preferences: units = boxes",
           [&] { session07::SessionProxy(instance_.get()).UpdateSession(session); });
}

void DesktopHost::SendRefresh() {
  refresh07::RefreshMsg refresh;
  refresh.UpdatedObjects.emplace_back("inventory", "tea-north", "Stock");
  refresh.DeletedObjects.emplace_back("inventory", "tea-south", "Stock");
  CallPage("sent a refresh: updated " + Describe(refresh.UpdatedObjects) + "; deleted " +
               Describe(refresh.DeletedObjects),
           [&] { refresh07::RefreshProxy(instance_.get()).SendRefresh(refresh); });
}

DesktopHost::Progress DesktopHost::GetProgress() {
  progress_.loggedIn = instance_->GetContentState() == interop::LoggedIn;
  return progress_;
}

void DesktopHost::CallPage(const std::string& what, const std::function<void()>& send) {
  try {
    send();
    window_.AddEntry("host", what);
  } catch (const interop::IWebControl::ScriptException& error) {
    window_.AddEntry("host", "could not call the page: " + error.message);
  } catch (const std::exception& error) {
    window_.AddEntry("host", std::string("could not call the page: ") + error.what());
  }
}

const core07::HostConfigurationResponseMsg& DesktopHost::GetHostConfiguration(
    interop::IHostControlInstance* /*instance*/, interop::IHostServiceDescriptor* /*service*/) {
  window_.AddEntry("page", "asked for the host configuration (" +
                               std::to_string(configuration_.Settings.size()) + " settings)");
  return configuration_;
}

void DesktopHost::OnClientStatus(const core07::ClientStatusMsg& status) {
  progress_.pageIdle = status.State == "idle";
  window_.AddEntry("page", "is " + status.State);
}

// The handler returns at once; a worker thread "asks the server" and answers
// through the library's callback, which sends the answer to the page from
// the worker's thread.
void DesktopHost::OnSoaJsonRequest(std::string serviceName, std::string operationName,
                                   std::string message, void* context,
                                   soa02::SoaResponseCallback callback) {
  const std::string operation = serviceName + "." + operationName;
  window_.AddEntry("page", "asks " + operation + " " + message + "; a worker answers in " +
                               std::to_string(kAnswerDelayMs) + " ms");
  ++busyWorkers_;
  std::lock_guard<std::mutex> lock(workersMutex_);
  workers_.emplace_back([this, operation, message, context, callback] {
    std::this_thread::sleep_for(std::chrono::milliseconds(kAnswerDelayMs));
    // The "server" counts 42 items of whatever the request names.
    interop::JsonObject answer;
    std::string answerText;
    interop::ExceptionInfo error;
    if (answer.FromJsonString(message)) {
      answer.SetProperty("Count", interop::JsonValue(42));
      answerText = answer.ToJsonString();
    } else {
      error = interop::ExceptionInfo(std::invalid_argument("The request is not a JSON object"));
    }
    const std::string line =
        "answered " + operation + ": " + (error.HasError() ? error.message : answerText);
    OnMainThread([this, line] { window_.AddEntry("worker", line); });
    callback(context, answerText, error);
    --busyWorkers_;
  });
}

void DesktopHost::OnPropertyChanged(const base::PropertyChangeEvent& event) {
  if (event.GetPropertyName() != "ContentState") return;
  // A time-out is announced on the library's timer thread.
  const interop::HostContentState state = instance_->GetContentState();
  OnMainThread([this, state] {
    const std::string name = interop::HostControlInstance::NameOfState(state);
    window_.ShowContentState(name, CanTalk(state));
    window_.AddEntry("state", name);
  });
}

void DesktopHost::ForwardLogEntry(const logging02::LoggerEntryMsg& entry) {
  if (current_ == nullptr) return;
  ++current_->progress_.logLines;
  if (entry.Level == "Error") ++current_->progress_.errors;
  current_->window_.AddEntry("page log", entry.Level + ": " + entry.FormatMessage);
}

void DesktopHost::OnMainThread(std::function<void()> task) {
  if (std::this_thread::get_id() == mainThread_) {
    task();
    return;
  }
  struct Posted {
    std::shared_ptr<bool> alive;
    std::function<void()> task;
  };
  g_idle_add_full(
      G_PRIORITY_DEFAULT,
      [](gpointer data) -> gboolean {
        auto* posted = static_cast<Posted*>(data);
        if (*posted->alive) posted->task();
        return G_SOURCE_REMOVE;
      },
      new Posted{alive_, std::move(task)},
      [](gpointer data) { delete static_cast<Posted*>(data); });
}

}  // namespace wevlin_desktop
