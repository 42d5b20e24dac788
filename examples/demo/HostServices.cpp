#include "HostServices.h"

#include <chrono>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace wevlin_demo {

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace core02 = services::Core::_2014_02;
namespace core07 = services::Core::_2014_07;
namespace logging02 = services::Logging::_2014_02;
namespace refresh07 = services::Refresh::_2014_07;
namespace session07 = services::Session::_2014_07;
namespace soa02 = services::Soa::_2014_02;
namespace version02 = services::Version::_2014_02;
namespace version03 = services::Version::_2014_03;

std::string Describe(const core02::InteropObjRef& object) {
  return object.DBId + "/" + object.ObjId + " (" + object.ObjType + ")";
}

std::string Describe(const std::vector<core02::InteropObjRef>& objects) {
  std::string text = std::to_string(objects.size());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    text += (i == 0 ? " " : ", ") + Describe(objects[i]);
  }
  return text;
}

std::string Describe(const core07::StringArrayProperty& property) {
  std::string text = property.Name + " =";
  for (std::size_t i = 0; i < property.Values.size(); ++i) {
    text += (i == 0 ? " " : ", ") + property.Values[i];
  }
  return text;
}

const char* YesNo(bool value) { return value ? "yes" : "no"; }

}  // namespace

// All the handlers, and what they saw. One object, so that the log
// forwarding function (a plain function pointer) can reach it too. The
// handlers run on the UI thread; the workers touch only sessionInfo_ and
// replies_, under mutex_, and the transcript, which has a lock of its own.
class HostServices::Handlers final : public core02::IHandleHostConfigurationSvc,
                                     public core07::IHandleClientStatusSvc,
                                     public session07::IHandleSessionSvc,
                                     public refresh07::IHandleRefreshSvc,
                                     public soa02::IHandleHostSessionInfoSvc,
                                     public soa02::IHandleAsyncSoaJsonServiceRequest,
                                     public soa02::IHandleRequestHostAuthSvc {
 public:
  // The "_2014_07" configuration handler has an operation of the same name
  // as the "_2014_02" one, so it is an object of its own.
  class Configuration2014_07 final : public core07::IHandleHostConfigurationSvc {
   public:
    explicit Configuration2014_07(Transcript& transcript) : transcript_(transcript) {
      configuration.Settings.emplace_back("Theme", "dark");
      configuration.Settings.emplace_back("HostType", "wevlin demo");
      configuration.Settings.emplace_back("Locale", "en-GB");
    }

    const core07::HostConfigurationResponseMsg& GetHostConfiguration(
        interop::IHostControlInstance*, interop::IHostServiceDescriptor*) override {
      transcript_.Labelled(Tone::Host, "host",
                           "GetHostConfiguration (_2014_07) asked; answering " +
                               std::to_string(configuration.Settings.size()) + " settings");
      return configuration;
    }

    core07::HostConfigurationResponseMsg configuration;

   private:
    Transcript& transcript_;
  };

  Handlers(Transcript& transcript, BackgroundWork& work)
      : transcript_(transcript),
        work_(work),
        uiThread_(std::this_thread::get_id()),
        configuration07(transcript) {
    configuration02.AllowGoHome = "true";
    configuration02.AllowThemeChange = "false";
    configuration02.AllowUserSessionChange = "true";
    configuration02.HasFullScreenSupport = "false";
    configuration02.HostType = "wevlin demo";
    configuration02.ShowVelmoraLogo = "false";
    configuration02.Theme = "dark";
    sessionInfo_.IsSessionActive = false;
    current_ = this;
  }

  ~Handlers() { current_ = nullptr; }

  // Host configuration, "_2014_02".
  const core02::HostConfigurationResponseMsg& GetHostConfiguration(
      interop::IHostControlInstance*, interop::IHostServiceDescriptor*) override {
    transcript_.Labelled(Tone::Host, "host",
                         "GetHostConfiguration (_2014_02) asked; answering Theme " +
                             configuration02.Theme + ", HostType " + configuration02.HostType);
    return configuration02;
  }

  void OnClientStatus(const core07::ClientStatusMsg& status) override {
    transcript_.Labelled(Tone::Host, "host", "OnClientStatus: the page is " + status.State);
    clientStates.push_back(status.State);
  }

  void OnSession(const session07::SessionMsg& session) override {
    std::string preferences;
    for (const auto& preference : session.Preferences) {
      preferences += (preferences.empty() ? "" : "; ") + Describe(preference);
    }
    transcript_.Labelled(Tone::Host, "host",
                         "OnSession: session objects " + Describe(session.SessionObjects) +
                             "; preferences " + std::to_string(session.Preferences.size()) +
                             (preferences.empty() ? "" : " (" + preferences + ")"));
    sessions.push_back(session.ToJsonString());
  }

  void OnRefresh(const refresh07::RefreshMsg& refresh) override {
    transcript_.Labelled(Tone::Host, "host",
                         "OnRefresh: created " + Describe(refresh.CreatedObjects) + "; updated " +
                             Describe(refresh.UpdatedObjects) + "; deleted " +
                             Describe(refresh.DeletedObjects) + "; data objects " +
                             std::to_string(refresh.DataObjects.size()));
    refreshes.push_back(refresh.ToJsonString());
  }

  // Answers with a copy of the session, taken under the lock: the library
  // reads the answer after the handler returns, while a worker may be
  // signing in.
  const soa02::HostSessionInfoResponseMsg& GetHostSessionInfo(
      interop::IHostControlInstance*, interop::IHostServiceDescriptor*) override {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      sessionInfoAnswer_ = sessionInfo_;
    }
    transcript_.Labelled(
        Tone::Host, "host",
        std::string("GetHostSessionInfo asked; session active: ") +
            YesNo(sessionInfoAnswer_.IsSessionActive) +
            (sessionInfoAnswer_.UserName.empty() ? "" : ", user " + sessionInfoAnswer_.UserName));
    return sessionInfoAnswer_;
  }

  // An SOA request: the handler returns at once; a worker thread "asks the
  // server" and calls the library's callback itself, which sends the answer
  // to the page from the worker's thread.
  void OnSoaJsonRequest(std::string serviceName, std::string operationName, std::string message,
                        void* context, soa02::SoaResponseCallback callback) override {
    transcript_.Labelled(Tone::Host, "host",
                         "OnSoaJsonRequest: " + serviceName + "." + operationName + " " + message +
                             "; a worker answers in " + std::to_string(kSoaDelayMs) + " ms");
    const auto asked = std::chrono::steady_clock::now();
    work_.Start(std::chrono::milliseconds(kSoaDelayMs), [this, message, context, callback,
                                                         asked](int worker) {
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
      transcript_.Labelled(Tone::Worker, "worker",
                           "#" + std::to_string(worker) + " answered after " +
                               FormatMs(MsSince(asked)) + ": " +
                               (error.HasError() ? error.message : answerText));
      CallBack(worker, "soa", answerText, [&] { callback(context, answerText, error); });
    });
  }

  // A login request: the handler returns at once; a worker thread "shows the
  // login", records the session and calls the library's callback itself.
  void OnRequestHostAuth(void* context, soa02::RequestHostAuthCallback callback) override {
    transcript_.Labelled(Tone::Host, "host",
                         "OnRequestHostAuth: a worker signs " + std::string(kUserName) + " in, " +
                             std::to_string(kLoginDelayMs) + " ms");
    const auto asked = std::chrono::steady_clock::now();
    work_.Start(
        std::chrono::milliseconds(kLoginDelayMs), [this, context, callback, asked](int worker) {
          {
            std::lock_guard<std::mutex> lock(mutex_);
            sessionInfo_.IsSessionActive = true;
            sessionInfo_.UserName = kUserName;
          }
          transcript_.Labelled(Tone::Worker, "worker",
                               "#" + std::to_string(worker) + " signed " + std::string(kUserName) +
                                   " in after " + FormatMs(MsSince(asked)));
          CallBack(worker, "auth", "", [&] { callback(context, true, interop::ExceptionInfo()); });
        });
  }

  // Runs `call` (the library's callback) on the worker's own thread, says in
  // the transcript which thread that is, and records the reply once the
  // callback has returned, when the page has it.
  template <typename Call>
  void CallBack(int worker, const std::string& service, const std::string& answer, Call call) {
    const bool onUiThread = std::this_thread::get_id() == uiThread_;
    const std::string number = "#" + std::to_string(worker);
    transcript_.Labelled(Tone::Worker, "worker",
                         number + " calls the library's callback on " +
                             (onUiThread ? "the UI thread" : "its own thread, not the UI thread"));
    const auto begun = std::chrono::steady_clock::now();
    call();
    transcript_.Labelled(Tone::Worker, "worker",
                         number + " the callback returned after " + FormatMs(MsSince(begun)) +
                             ": the reply was sent to the page from " +
                             (onUiThread ? "the UI thread" : "worker thread " + number));
    std::lock_guard<std::mutex> lock(mutex_);
    replies_.push_back({service, answer, onUiThread});
  }

  // The log forwarding service calls a plain function.
  static void ForwardLogEntry(const logging02::LoggerEntryMsg& entry) {
    if (current_ == nullptr) return;
    current_->transcript_.Labelled(Tone::Host, "host",
                                   "log entry [" + entry.Level + "] " + entry.FormatMessage);
    current_->logEntries.push_back(entry.Level + ": " + entry.FormatMessage);
  }

  static double MsSince(std::chrono::steady_clock::time_point begun) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun)
        .count();
  }

  Transcript& transcript_;
  BackgroundWork& work_;
  const std::thread::id uiThread_;

  core02::HostConfigurationResponseMsg configuration02;
  Configuration2014_07 configuration07;

  std::vector<std::string> clientStates;
  std::vector<std::string> logEntries;
  std::vector<std::string> sessions;
  std::vector<std::string> refreshes;

  mutable std::mutex mutex_;
  // Guarded by mutex_: the session a login signs in, and the workers' replies.
  soa02::HostSessionInfoResponseMsg sessionInfo_;
  std::vector<Reply> replies_;
  // The copy of sessionInfo_ that GetHostSessionInfo answered (UI thread).
  soa02::HostSessionInfoResponseMsg sessionInfoAnswer_;

  static Handlers* current_;
};

HostServices::Handlers* HostServices::Handlers::current_ = nullptr;

HostServices::HostServices(Transcript& transcript, BackgroundWork& work)
    : handlers_(std::make_unique<Handlers>(transcript, work)) {}

HostServices::~HostServices() = default;

std::vector<interop::IHostServiceDescriptor*> HostServices::RegisterAll(
    interop::IHostManager* manager) {
  Handlers* h = handlers_.get();
  // The version test services answer by themselves and never call their
  // handler, so they get none.
  std::vector<interop::IHostServiceDescriptor*> all = {
      new core02::StartupNotificationSvc(),
      new core02::HostConfigurationSvc(h),
      new core07::HostConfigurationSvc(&h->configuration07),
      new core07::ClientStatusSvc(h),
      new logging02::LoggerForwardSvc(&Handlers::ForwardLogEntry),
      new session07::SessionSvc(h),
      new refresh07::RefreshSvc(h),
      new version02::TestVersionSvc(nullptr),
      new version03::TestVersionSvc01(nullptr),
      new soa02::AsyncSoaJsonMessageSvc(h),
      new soa02::RequestHostAuthSvc(h),
      new soa02::HostSessionInfoSvc(h),
  };
  manager->RegisterServices(all);
  return all;
}

std::string HostServices::Configuration2014_02Json() const {
  return handlers_->configuration02.ToJsonString();
}

std::string HostServices::Configuration2014_07Json() const {
  return handlers_->configuration07.configuration.ToJsonString();
}

const std::vector<std::string>& HostServices::ClientStates() const {
  return handlers_->clientStates;
}

const std::vector<std::string>& HostServices::LogEntries() const { return handlers_->logEntries; }

const std::vector<std::string>& HostServices::Sessions() const { return handlers_->sessions; }

const std::vector<std::string>& HostServices::Refreshes() const { return handlers_->refreshes; }

std::vector<HostServices::Reply> HostServices::Replies() const {
  std::lock_guard<std::mutex> lock(handlers_->mutex_);
  return handlers_->replies_;
}

std::size_t HostServices::ReplyCount() const {
  std::lock_guard<std::mutex> lock(handlers_->mutex_);
  return handlers_->replies_.size();
}

bool HostServices::LoggedIn() const {
  std::lock_guard<std::mutex> lock(handlers_->mutex_);
  return handlers_->sessionInfo_.IsSessionActive;
}

}  // namespace wevlin_demo
