#include "DemoRun.h"

#include <filesystem>
#include <map>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/ChromiumOptions.h"

namespace wevlin_demo {

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace names = services::ServiceNames;
namespace chromium = Com::Velmora::TAVO::Wevlin::WebControls::Chromium;
namespace clientinfo07 = services::ClientInfo::_2014_07;
namespace core02 = services::Core::_2014_02;
namespace core07 = services::Core::_2014_07;
namespace openlocation02 = services::OpenLocation::_2014_02;
namespace refresh07 = services::Refresh::_2014_07;
namespace session07 = services::Session::_2014_07;
namespace soa02 = services::Soa::_2014_02;
namespace version02 = services::Version::_2014_02;
namespace version03 = services::Version::_2014_03;

// The page service of the demo page that always throws, and what it throws.
constexpr const char* kFailingService = "tavo.demo.Failing.client";
constexpr const char* kFailingMessage = "The demo page refuses this call on purpose";
// The host service that the demo page calls although nobody offers it.
constexpr const char* kMissingService = "tavo.demo.Missing.host";
// The page service that the demo page registers late and then announces, and
// what it answers: this prefix followed by the payload.
constexpr const char* kLateService = "tavo.demo.Echo.client";
constexpr const char* kLateVersion = "_2014_07";
constexpr const char* kLateAnswerPrefix = "The page echoes: ";

std::string ShortName(const std::string& fqn) {
  static const std::string prefix = "tavo.wevlin.infrastructure.services.";
  return fqn.rfind(prefix, 0) == 0 ? fqn.substr(prefix.size()) : fqn;
}

// Returns `text`, or "" (two quotes) for an empty text, so that it shows.
std::string Shown(const std::string& text) { return text.empty() ? "\"\"" : text; }

std::string StateName(interop::HostContentState state) {
  return interop::HostControlInstance::NameOfState(state);
}

// What each content state means in this demo, for the transcript.
std::string Meaning(interop::HostContentState state) {
  switch (state) {
    case interop::Navigating:
      return "LaunchToTarget: the control loads the page";
    case interop::Waiting:
      return "the page has loaded; the host pings it and waits for it to start the handshake";
    case interop::Initializing:
      return "the page asked for the handshake (tavoHost_WebSideStartHandShake)";
    case interop::LoadedCanTalk:
      return "ping and service lists went through; the host sends the startup notification";
    case interop::LoadedNoTalk:
      return "the handshake failed: the page did not answer the host's script calls";
    case interop::TimedOut:
      return "the page did not start the handshake in time";
    case interop::LoggedIn:
      return "the page sent its startup notification: logged in";
    case interop::NoContent:
      break;
  }
  return "";
}

double MsSince(std::chrono::steady_clock::time_point begun) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun)
      .count();
}

}  // namespace

// Writes each change of the host control instance to the transcript: its
// content state (with what the new state means) and the page's version.
// Called on the application's thread, or on the timer thread for a time-out.
class DemoRun::StateListener : public base::IPropertyChangeListener {
 public:
  StateListener(interop::HostControlInstance& instance, Transcript& transcript)
      : instance_(instance), transcript_(transcript) {}

  void OnPropertyChanged(const base::PropertyChangeEvent& event) override {
    const std::string property = event.GetPropertyName();
    if (property == "ContentState") {
      const interop::HostContentState state = instance_.GetContentState();
      const std::string meaning = Meaning(state);
      transcript_.Stamped(
          state == interop::LoadedNoTalk || state == interop::TimedOut ? Tone::Failed : Tone::State,
          "state  " + StateName(previous_) + " -> " + StateName(state) +
              (meaning.empty() ? "" : ": " + meaning));
      previous_ = state;
    } else if (property == "WebSideVersion") {
      transcript_.Stamped(Tone::State, "page version  \"" + instance_.GetWebSideVersion() +
                                           "\" (its answer to the host's ping)");
    }
  }

 private:
  interop::HostControlInstance& instance_;
  Transcript& transcript_;
  interop::HostContentState previous_ = interop::NoContent;
};

DemoRun::DemoRun(DemoOptions options, Transcript& transcript)
    : options_(std::move(options)), transcript_(transcript) {
  pageUrl_ = options_.pageUrl.empty()
                 ? DemoOptions::FileUrl(std::string(WEVLIN_DEMO_PAGE_DIR) + "/index.html")
                 : options_.pageUrl;
  screenshotPath_ = options_.screenshotPath.empty()
                        ? std::string(WEVLIN_DEMO_DEFAULT_SCREENSHOT)
                        : std::filesystem::absolute(options_.screenshotPath).string();
}

DemoRun::~DemoRun() { TearDown(); }

const std::string& DemoRun::ErrorSummary() const { return errorSummary_; }

int DemoRun::Run() {
  Introduce();
  if (options_.pageUrl.empty() &&
      !std::filesystem::exists(std::string(WEVLIN_DEMO_PAGE_DIR) + "/index.html")) {
    errorSummary_ = std::string("the demo page is missing: ") + WEVLIN_DEMO_PAGE_DIR +
                    "/index.html (the build copies it there; build the target wevlin_demo again)";
    transcript_.Raw(Tone::Failed, errorSummary_);
    return kExitStepFailed;
  }

  // Diagnostics of the library (and the page's console) join the transcript.
  base::SetLogSink(
      [this](const std::string& line) { transcript_.Labelled(Tone::Script, "library", line); });

  services_ = std::make_unique<HostServices>(transcript_, work_);
  interop::HostManager* manager = interop::HostManager::TheInstance();
  transcript_.Heading("Host services registered with the host manager");
  for (interop::IHostServiceDescriptor* service : services_->RegisterAll(manager)) {
    transcript_.Labelled(Tone::Plain, "",
                         ShortName(service->GetFQN()) + " " + service->GetSvcVersion());
  }

  if (const int status = StartBrowser(); status != kExitSuccess) return status;

  const bool loggedIn = LaunchAndLogIn();
  if (loggedIn) {
    CallHostFromPage();
    CallPageFromHost();
  }
  SaveScreenshot();
  const int status = Summarise();
  TearDown();
  return status;
}

void DemoRun::Introduce() {
  transcript_.Raw(Tone::Heading,
                  "wevlin demo: a native host and a web page talking through wevlin " +
                      interop::HostManager::TheInstance()->GetVersion());
  transcript_.Labelled(Tone::Plain, "page", pageUrl_);
  transcript_.Labelled(Tone::Plain, "timeout", std::to_string(options_.timeout.count()) + " ms");
  transcript_.Labelled(Tone::Plain, "picture", screenshotPath_);
}

int DemoRun::StartBrowser() {
  transcript_.Heading("Browser control");
  chromium::ChromiumOptions browserOptions;
  browserOptions.logConsoleMessages = true;
  try {
    control_ = std::make_unique<chromium::ChromiumWebControl>(browserOptions);
  } catch (const chromium::ChromiumError& error) {
    transcript_.Raw(Tone::Failed, std::string("The browser did not start: ") + error.what());
    errorSummary_ = std::string("the browser did not start: ") + error.what();
    // Only a browser that is not there is helped by installing one; a browser
    // that started and then died has said why on standard error.
    const bool missing =
        std::string(error.what()).find("does not exist or is not executable") != std::string::npos;
    if (error.kind() == chromium::ChromiumError::Kind::LaunchFailed) {
      const std::string hint =
          missing ? "Install Debian's package chromium (apt-get install chromium), or set "
                    "WEVLIN_CHROMIUM to a Chromium executable; scripts/demo.sh installs it."
                  : "The browser is there but did not come up; its own messages above say why.";
      transcript_.Raw(Tone::Failed, hint);
      errorSummary_ += "\n" + hint;
    }
    return kExitBrowserMissing;
  }
  transcript_.Stamped(Tone::Plain, "headless Chromium started, process " +
                                       std::to_string(control_->BrowserProcessId()));
  transcript_.Labelled(Tone::Plain, "profile",
                       control_->ProfileDirectory() + " (removed when the control goes)");

  // The application's objects around the control, as any embedding builds
  // them: the instance on the control (here through the tracing control that
  // prints the script lines), the host API on the instance, and the API
  // handed to the control so that the page can reach it.
  tracing_ = std::make_unique<TracingWebControl>(*control_, transcript_);
  instance_ = std::make_unique<interop::HostControlInstance>(tracing_.get());
  instance_->SetTimeOutInterval(static_cast<unsigned int>(options_.timeout.count()));
  api_ = std::make_unique<interop::HostAPI>(instance_.get());
  control_->SetHostAPI(api_.get());
  listener_ = std::make_unique<StateListener>(*instance_, transcript_);
  instance_->AddChangeListener(listener_.get());
  return kExitSuccess;
}

bool DemoRun::LaunchAndLogIn() {
  transcript_.Heading("Launch, handshake and login");
  interop::HostManager* manager = interop::HostManager::TheInstance();
  manager->RegisterTargetConfig(new interop::TargetConfig("demo", "wevlin demo page", pageUrl_));
  instance_->LaunchToTarget(manager->GetTargetConfig("demo"));

  WaitUntil([this] {
    const interop::HostContentState state = instance_->GetContentState();
    return state == interop::LoggedIn || state == interop::LoadedNoTalk ||
           state == interop::TimedOut;
  });
  const interop::HostContentState state = instance_->GetContentState();
  ++checks_;
  if (state != interop::LoggedIn) {
    const std::string failure = "The page did not log in within " +
                                std::to_string(options_.timeout.count()) + " ms; its state is " +
                                StateName(state) + ".";
    failures_.push_back(failure);
    transcript_.Stamped(Tone::Failed, failure);
    if (state == interop::Waiting || state == interop::LoadedCanTalk) {
      transcript_.Raw(Tone::Failed,
                      state == interop::Waiting
                          ? "The page never started the handshake: does it load wevlin.js and "
                            "call startHandshake()?"
                          : "The page never sent its startup notification "
                            "(sendStartupNotification()).");
    }
    return false;
  }

  demoPage_ = Eval("typeof demoPage") == "object";
  base::IObservableList<interop::ITargetServiceDesc*>* offered =
      instance_->GetKnownWebSideServices();
  transcript_.Stamped(Tone::Plain,
                      "the page announced " + std::to_string(offered->GetSize()) + " services:");
  for (int i = 0; i < offered->GetSize(); ++i) {
    transcript_.Labelled(
        Tone::Plain, "",
        ShortName(offered->GetAt(i)->GetFQN()) + " " + offered->GetAt(i)->GetSvcVersion());
  }
  return true;
}

void DemoRun::CallHostFromPage() {
  transcript_.Heading("Page -> host: the page calls the host's services");
  if (!demoPage_) {
    transcript_.Raw(Tone::Plain,
                    "The page has no demoPage object, so the demo cannot ask it for calls; "
                    "whatever it calls by itself shows above and below as the host receives it.");
    return;
  }
  const Json steps = Json::parse(Eval("demoPage.steps()"));
  for (std::size_t i = 0; i < steps.size(); ++i) RunPageStep(steps[i], i + 1, steps.size());
}

void DemoRun::RunPageStep(const Json& step, std::size_t number, std::size_t count) {
  const std::string id = step.at("id").get<std::string>();
  const std::string kind = step.at("kind").get<std::string>();
  const std::string fqn = step.at("fqn").get<std::string>();
  const std::string version = step.at("version").get<std::string>();
  const bool awaitsReply = step.value("awaitsReply", false);
  ++pageCalls_;
  currentStep_ = "page -> host " + id;
  transcript_.Stamped(Tone::PageToHost, "page -> host  [" + std::to_string(number) + "/" +
                                            std::to_string(count) + "] " +
                                            step.at("title").get<std::string>());
  // What the host knows of the late service before the page announces it.
  HostKnowledge before;
  if (kind == "ping") {
    transcript_.Labelled(Tone::Plain, "call", "tavoHostPing()");
  } else if (kind == "announce") {
    transcript_.Labelled(Tone::Plain, "call",
                         "tavoHost_WebSideServiceListUpdate('Replace', the page's service list)");
    transcript_.Labelled(Tone::Plain, "service",
                         ShortName(fqn) + " " + version + ", registered by the page just now");
    before = ReportKnowledge("before", fqn, version);
  } else {
    transcript_.Labelled(Tone::Plain, "service",
                         ShortName(fqn) + " " + version + ", " + kind +
                             (kind == "method" ? " (tavoHostMethod)" : " (tavoHostEvent)"));
    transcript_.Labelled(Tone::Plain, "payload", Shown(step.at("payload").get<std::string>()));
  }

  // A step that waits for a worker's reply ends when the page has the reply
  // and the worker's callback has returned, so that the worker's lines come
  // before the outcome in the transcript.
  const std::size_t repliesBefore = services_->ReplyCount();
  const std::string call = Eval("demoPage.start(" + Json(id).dump() + ")");
  const bool settled = WaitUntil([&] {
    return Eval("demoPage.done(" + call + ")") == "true" &&
           (!awaitsReply || services_->ReplyCount() > repliesBefore);
  });
  if (!settled) {
    Verdict("no answer within " + std::to_string(options_.timeout.count()) + " ms");
    return;
  }
  const Json outcome = Json::parse(Eval("demoPage.outcome(" + call + ")"));
  if (outcome.value("ok", false)) {
    const std::string value = outcome.value("value", "");
    transcript_.Labelled(Tone::Plain, "reply",
                         kind == "event" ? "\"\" (an event has no reply)" : Shown(value));
    if (outcome.contains("reply")) {
      transcript_.Labelled(Tone::Plain, "async",
                           "after " + FormatMs(outcome.value("ms", 0.0)) +
                               " the page's reply service got " +
                               outcome.at("reply").get<std::string>());
    }
    if (outcome.contains("answer") && outcome.at("answer").is_string()) {
      transcript_.Labelled(
          Tone::Plain, "answer",
          outcome.at("answer").get<std::string>() + " (SoaResponse, Base64-decoded by the page)");
    }
  } else {
    transcript_.Labelled(Tone::Plain, "failed",
                         outcome.value("name", "") + ": " + outcome.value("message", ""));
    if (outcome.contains("record") && outcome.at("record").is_string()) {
      transcript_.Labelled(Tone::Plain, "record", outcome.at("record").get<std::string>());
    }
  }
  std::string failure = CheckPageStep(step, outcome);
  if (kind == "announce") {
    const std::string announced = CheckAnnouncement(before, ReportKnowledge("after", fqn, version));
    if (failure.empty()) failure = announced;
  }
  transcript_.Labelled(Tone::Plain, "took", FormatMs(outcome.value("ms", 0.0)));
  Verdict(failure);
}

DemoRun::HostKnowledge DemoRun::ReportKnowledge(const std::string& label, const std::string& fqn,
                                                const std::string& version) {
  HostKnowledge knowledge;
  knowledge.count = instance_->GetKnownWebSideServices()->GetSize();
  knowledge.known =
      services::BaseServiceProxy(instance_.get(), fqn, version).IsTargetServiceAvailable();
  transcript_.Labelled(
      Tone::Plain, label,
      "the host knows " + std::to_string(knowledge.count) +
          " page services; IsTargetServiceAvailable: " + (knowledge.known ? "yes" : "no"));
  return knowledge;
}

std::string DemoRun::CheckAnnouncement(const HostKnowledge& before, const HostKnowledge& after) {
  if (before.known) return "the host knew the service before the page announced it";
  if (!after.known) return "the host did not learn the service";
  if (after.count != before.count + 1) {
    return "the host knows " + std::to_string(after.count) + " services, expected " +
           std::to_string(before.count + 1);
  }
  return "";
}

std::string DemoRun::CheckPageStep(const Json& step, const Json& outcome) {
  const std::string id = step.at("id").get<std::string>();
  const bool ok = outcome.value("ok", false);
  if (id == "missing-service") {
    const std::string expected = interop::JsonSerializationHelper::GetJsonForException(
        std::invalid_argument(std::string("No matching service descriptor found for: ") +
                              kMissingService + " ver: _2014_07"));
    if (ok) return "the call succeeded; it should have been refused";
    const std::string record = outcome.value("record", "");
    if (record != expected) return "the record is " + record + ", expected " + expected;
    return "";
  }
  if (!ok) {
    return "the call failed: " + outcome.value("name", "") + " " + outcome.value("message", "");
  }
  const std::string value = outcome.value("value", "");
  if (id == "host-configuration-2014-02") {
    if (value != services_->Configuration2014_02Json()) return "not the host's configuration";
  } else if (id == "host-configuration-2014-07") {
    if (value != services_->Configuration2014_07Json()) return "not the host's settings";
  } else if (id == "client-status") {
    if (services_->ClientStates().empty() || services_->ClientStates().back() != "busy") {
      return "the handler did not receive the state busy";
    }
  } else if (id == "log" || id == "log-event") {
    // A method is answered "OK"; an event has no answer.
    if (value != (id == "log" ? "OK" : "")) return "the reply is " + Shown(value);
    const Json entry = Json::parse(step.at("payload").get<std::string>(), nullptr, false);
    if (!entry.is_object()) return "the step's payload is not a log entry";
    const std::string expected = entry.value("Level", "") + ": " + entry.value("FormatMessage", "");
    if (services_->LogEntries().empty() || services_->LogEntries().back() != expected) {
      return "the entry " + expected + " did not reach the log";
    }
  } else if (id == "session") {
    if (services_->Sessions().empty()) return "the handler did not receive the session";
  } else if (id == "refresh") {
    if (services_->Refreshes().empty()) return "the handler did not receive the refresh";
  } else if (id == "test-version-2014-02") {
    version02::TestVersionResponseMsg reply;
    if (!reply.FromJsonString(value) || reply.ServiceName != names::kTestVersion ||
        reply.ServiceVersion != "_2014_02") {
      return "the reply does not name the _2014_02 service";
    }
  } else if (id == "test-version-2014-03") {
    version03::TestVersionResponseMsg reply;
    if (!reply.FromJsonString(value) || reply.ServiceName != names::kTestVersion ||
        reply.ServiceVersion != "_2014_03" || !reply.Result) {
      return "the reply does not name the _2014_03 service with Result true";
    }
  } else if (id == "async-soa" || id == "host-auth") {
    // The replies carry "Exception": null when there was no error; a data
    // contract does not read null into a sub-object, so they are read as
    // plain JSON here.
    const Json reply = Json::parse(outcome.value("reply", "null"), nullptr, false);
    if (!reply.is_object()) return "no reply reached the page";
    if (!reply.value("Exception", Json()).is_null()) return "the reply carries an error";
    // The worker's callback sent the reply from the worker's own thread.
    const std::vector<HostServices::Reply> replies = services_->Replies();
    const std::string service = id == "host-auth" ? "auth" : "soa";
    if (replies.empty() || replies.back().service != service) {
      return "no worker answered through the library's callback";
    }
    if (replies.back().onUiThread) return "the callback ran on the UI thread, not the worker's";
    if (id == "host-auth") {
      if (!reply.value("IsAuthenticated", false)) return "the reply says the login failed";
      if (!services_->LoggedIn()) return "the host's session is not active";
    } else {
      if (reply.value("CacheId", "") != "soa-1") return "the reply's CacheId is not soa-1";
      if (outcome.value("answer", "") != replies.back().answer) {
        return "the page did not get the worker's answer";
      }
    }
  } else if (id == "host-session-info") {
    soa02::HostSessionInfoResponseMsg reply;
    if (!reply.FromJsonString(value) || !reply.IsSessionActive ||
        reply.UserName != HostServices::kUserName) {
      return "the reply does not show the logged-in session";
    }
  } else if (id == "ping") {
    if (value != interop::HostManager::TheInstance()->GetVersion()) return "not the host's version";
  } else if (id == "announce-services") {
    if (!value.empty()) return "the reply is " + value + ", expected \"\"";
  }
  return "";
}

void DemoRun::CallPageFromHost() {
  transcript_.Heading("Host -> page: the host calls the page's services");
  interop::HostControlInstance* instance = instance_.get();
  session07::SessionProxy sessionProxy(instance);
  refresh07::RefreshProxy refreshProxy(instance);
  openlocation02::OpenLocationProxy openLocationProxy(instance);
  clientinfo07::ClientInfoProxy clientInfoProxy(instance);
  version02::TestVersionProxy versionProxy(instance);
  version03::TestVersionProxy01 versionProxy01(instance);
  // A proxy for a version of the session service that the page does not
  // offer: versions are matched exactly, so it is not available.
  services::BaseServiceProxy oldSessionProxy(instance, names::kSessionClient, "_2014_02");
  services::BaseServiceProxy failingProxy(instance, kFailingService, "_2014_07");
  // The service that the page registered late and announced (see the page
  // step announce-services).
  services::BaseServiceProxy lateProxy(instance, kLateService, kLateVersion);

  const std::size_t count = 9;
  std::size_t number = 0;
  auto header = [&](const std::string& title) {
    ++hostCalls_;
    currentStep_ = "host -> page " + title;
    transcript_.Stamped(Tone::HostToPage, "host -> page  [" + std::to_string(++number) + "/" +
                                              std::to_string(count) + "] " + title);
  };
  auto service = [&](const services::BaseServiceProxy& proxy, const std::string& kind) {
    interop::ITargetServiceDesc* target = proxy.GetBaseServiceDescriptor();
    transcript_.Labelled(Tone::Plain, "service",
                         ShortName(target->GetFQN()) + " " + target->GetSvcVersion() + ", " + kind);
  };
  // Whether the call may go ahead: the page must offer the service. For the
  // demo page that is a check; another page simply may not offer it.
  auto offered = [&](const services::BaseServiceProxy& proxy) {
    if (proxy.IsTargetServiceAvailable()) return true;
    if (demoPage_) {
      Verdict("the page does not offer the service");
    } else {
      transcript_.Labelled(Tone::Plain, "skipped", "the page does not offer this service");
    }
    return false;
  };
  // What the page's service received, as the page tells it.
  auto pageGot = [&](const std::string& name, const std::string& expected) {
    const Json received = Json::parse(Eval("demoPage.received(" + Json(name).dump() + ")"));
    if (!received.value("received", false)) return std::string("the page received nothing");
    const std::string payload = received.value("payload", "");
    transcript_.Labelled(Tone::Plain, "page got", payload);
    return payload == expected ? std::string()
                               : "the page received " + payload + ", expected " + expected;
  };
  auto took = [&](std::chrono::steady_clock::time_point begun) {
    transcript_.Labelled(Tone::Plain, "took", FormatMs(MsSince(begun)));
  };

  // 1. Which services the page offers.
  header("IsTargetServiceAvailable for each proxy");
  {
    const std::vector<std::pair<const services::BaseServiceProxy*, bool>> proxies = {
        {&sessionProxy, true},    {&refreshProxy, true}, {&openLocationProxy, true},
        {&clientInfoProxy, true}, {&versionProxy, true}, {&versionProxy01, true},
        {&failingProxy, true},    {&lateProxy, true},    {&oldSessionProxy, false},
    };
    std::string failure;
    for (const auto& [proxy, expected] : proxies) {
      interop::ITargetServiceDesc* target = proxy->GetBaseServiceDescriptor();
      const bool available = proxy->IsTargetServiceAvailable();
      transcript_.Labelled(Tone::Plain, available ? "yes" : "no",
                           ShortName(target->GetFQN()) + " " + target->GetSvcVersion());
      if (demoPage_ && available != expected && failure.empty()) {
        failure = ShortName(target->GetFQN()) + " " + target->GetSvcVersion() +
                  (expected ? " should be available" : " should not be available");
      }
    }
    Verdict(failure);
  }

  // 2. Session.
  header("SessionProxy::UpdateSession");
  service(sessionProxy, "event");
  if (offered(sessionProxy)) {
    session07::SessionMsg session;
    session.SessionObjects.emplace_back("demo-db", "user-42", "User");
    session.Preferences.emplace_back("theme", std::vector<std::string>{"dark"});
    const std::string payload = session.ToJsonString();
    transcript_.Labelled(Tone::Plain, "payload", payload);
    const auto begun = std::chrono::steady_clock::now();
    sessionProxy.UpdateSession(session);
    took(begun);
    Verdict(demoPage_ ? pageGot("session", payload) : "");
  }

  // 3. Refresh.
  header("RefreshProxy::SendRefresh");
  service(refreshProxy, "event");
  if (offered(refreshProxy)) {
    refresh07::RefreshMsg refresh;
    refresh.UpdatedObjects.emplace_back("demo-db", "note-7", "Note");
    refresh.DeletedObjects.emplace_back("demo-db", "note-3", "Note");
    const std::string payload = refresh.ToJsonString();
    transcript_.Labelled(Tone::Plain, "payload", payload);
    const auto begun = std::chrono::steady_clock::now();
    refreshProxy.SendRefresh(refresh);
    took(begun);
    Verdict(demoPage_ ? pageGot("refresh", payload) : "");
  }

  // 4. Open location.
  header("OpenLocationProxy::openLocation");
  service(openLocationProxy, "event");
  if (offered(openLocationProxy)) {
    const std::vector<core02::InteropObjRef> objects = {{"demo-db", "note-7", "Note"}};
    openlocation02::OpenLocationMsg message;
    message.location = "inbox";
    message.OpenComponent = objects;
    const std::string payload = message.ToJsonString();
    transcript_.Labelled(Tone::Plain, "payload", payload);
    const auto begun = std::chrono::steady_clock::now();
    openLocationProxy.openLocation("inbox", objects);
    took(begun);
    Verdict(demoPage_ ? pageGot("openLocation", payload) : "");
  }

  // 5. Client information.
  header("ClientInfoProxy::GetClientInfo");
  service(clientInfoProxy, "method");
  if (offered(clientInfoProxy)) {
    transcript_.Labelled(Tone::Plain, "payload", "\"\"");
    const auto begun = std::chrono::steady_clock::now();
    const std::map<std::string, std::string> info = clientInfoProxy.GetClientInfo();
    for (const auto& [key, value] : info)
      transcript_.Labelled(Tone::Plain, "reply", key + " = " + value);
    took(begun);
    const auto page = info.find("page");
    Verdict(!demoPage_ || (page != info.end() && page->second == "wevlin demo page")
                ? ""
                : "the reply lacks page = wevlin demo page");
  }

  // 6. Version test, "_2014_02".
  header("TestVersionProxy::GetClientServiceVersion");
  service(versionProxy, "method");
  if (offered(versionProxy)) {
    const auto begun = std::chrono::steady_clock::now();
    const version02::TestVersionResponseMsg reply = versionProxy.GetClientServiceVersion();
    transcript_.Labelled(Tone::Plain, "reply", reply.ToJsonString());
    took(begun);
    Verdict(reply.ServiceName == names::kTestVersion && reply.ServiceVersion == "_2014_02"
                ? ""
                : "the reply does not name the _2014_02 service");
  }

  // 7. Version test, "_2014_03".
  header("TestVersionProxy01::GetClientServiceVersion");
  service(versionProxy01, "method");
  if (offered(versionProxy01)) {
    const auto begun = std::chrono::steady_clock::now();
    const version03::TestVersionResponseMsg reply = versionProxy01.GetClientServiceVersion();
    transcript_.Labelled(Tone::Plain, "reply", reply.ToJsonString());
    took(begun);
    Verdict(reply.ServiceName == names::kTestVersion && reply.ServiceVersion == "_2014_03" &&
                    reply.Result
                ? ""
                : "the reply does not name the _2014_03 service with Result true");
  }

  // 8. The page service that the page announced late.
  header("a page service announced late");
  service(lateProxy, "method, called with InvokeWebMethod");
  if (offered(lateProxy)) {
    const std::string payload = "{\"Text\": \"hello from the host\"}";
    transcript_.Labelled(Tone::Plain, "payload", payload);
    const auto begun = std::chrono::steady_clock::now();
    const std::string reply =
        instance_->InvokeWebMethod(lateProxy.GetBaseServiceDescriptor(), payload);
    transcript_.Labelled(Tone::Plain, "reply", Shown(reply));
    took(begun);
    const std::string expected = kLateAnswerPrefix + payload;
    Verdict(reply == expected ? "" : "expected " + expected);
  }

  // 9. A page service that throws: the page answers with an exception record
  // and the host control instance turns it into std::runtime_error.
  header("a page service that throws");
  service(failingProxy, "method, called with InvokeWebMethod");
  if (offered(failingProxy)) {
    transcript_.Labelled(Tone::Plain, "payload", "{}");
    const auto begun = std::chrono::steady_clock::now();
    std::string failure = "the call did not throw";
    try {
      instance_->InvokeWebMethod(failingProxy.GetBaseServiceDescriptor(), "{}");
    } catch (const std::runtime_error& error) {
      transcript_.Labelled(Tone::Plain, "threw",
                           std::string("std::runtime_error \"") + error.what() + "\"");
      const std::string expected = std::string("RangeError ") + kFailingMessage;
      failure = error.what() == expected ? "" : "expected \"" + expected + "\"";
    }
    took(begun);
    Verdict(failure);
  }
}

void DemoRun::SaveScreenshot() {
  transcript_.Heading("Screenshot");
  try {
    const std::filesystem::path path(screenshotPath_);
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path());
    control_->SaveScreenshot(screenshotPath_);
    transcript_.Stamped(Tone::Plain, "saved the page as " + screenshotPath_ + " (" +
                                         std::to_string(std::filesystem::file_size(path)) +
                                         " bytes)");
    ++checks_;
  } catch (const std::exception& error) {
    ++checks_;
    failures_.push_back(std::string("the screenshot failed: ") + error.what());
    transcript_.Stamped(Tone::Failed, failures_.back());
  }
}

int DemoRun::Summarise() {
  transcript_.Heading("Summary");
  transcript_.Labelled(Tone::Plain, "calls",
                       std::to_string(pageCalls_) + " page -> host, " + std::to_string(hostCalls_) +
                           " host -> page, in " + FormatMs(transcript_.ElapsedMs()));
  if (failures_.empty()) {
    transcript_.Labelled(Tone::Ok, "result", "all " + std::to_string(checks_) + " checks passed");
    transcript_.Labelled(Tone::Plain, "picture", screenshotPath_);
    return kExitSuccess;
  }
  transcript_.Labelled(
      Tone::Failed, "result",
      std::to_string(failures_.size()) + " of " + std::to_string(checks_) + " checks FAILED:");
  for (const std::string& failure : failures_) transcript_.Labelled(Tone::Failed, "", failure);
  errorSummary_ = std::to_string(failures_.size()) + " of " + std::to_string(checks_) +
                  " checks failed, the first: " + failures_.front();
  return kExitStepFailed;
}

void DemoRun::TearDown() {
  // The order an application must keep: stop listening, take the API away
  // from the control, let the worker threads finish, then destroy the API,
  // the instance and, last, the control.
  if (instance_ && listener_) instance_->RemoveChangeListener(listener_.get());
  if (control_) control_->SetHostAPI(nullptr);
  work_.JoinAll();
  api_.reset();
  instance_.reset();
  listener_.reset();
  tracing_.reset();
  control_.reset();
  base::SetLogSink(nullptr);
}

std::string DemoRun::Eval(const std::string& script) { return control_->ExecuteScript(script); }

bool DemoRun::WaitUntil(const std::function<bool()>& condition) {
  return control_->RunUntil(condition, options_.timeout);
}

void DemoRun::Verdict(const std::string& failure) {
  ++checks_;
  if (failure.empty()) {
    transcript_.Labelled(Tone::Ok, "", "ok");
  } else {
    failures_.push_back(currentStep_ + ": " + failure);
    transcript_.Labelled(Tone::Failed, "", "FAILED: " + failure);
  }
}

}  // namespace wevlin_demo
