#include "wevlin/infrastructure/interop/HostControlInstance.h"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ExceptionHolder.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/interop/port/Port.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {
namespace {

using Base::internal::WriteLogLine;

// The opening characters of an exception record: {"Exception
constexpr char kExceptionPrefix[] = "{\"Exception";
constexpr std::size_t kExceptionPrefixLength = 11;

constexpr unsigned int kDefaultTimeOutMs = 150000;

constexpr char kStartupNotificationFqn[] =
    "tavo.wevlin.infrastructure.services.startup.StartupNotification.host";
constexpr char kStartupNotificationVersion[] = "_2014_02";

// Quotes `argument` for a single-quoted script string the compatible way: a
// backslash before every single quote and nothing else, which is exactly what
// the pages of this protocol expect (see ScriptQuoting::Compatible).
void AppendCompatiblyQuoted(std::string& script, const std::string& argument) {
  script += '\'';
  for (char c : argument) {
    if (c == '\'') script += '\\';
    script += c;
  }
  script += '\'';
}

// Quotes `argument` for a single-quoted script string so that the script
// engine reads back exactly its characters (see ScriptQuoting::Strict).
void AppendStrictlyQuoted(std::string& script, const std::string& argument) {
  static const char kHexDigits[] = "0123456789abcdef";
  script += '\'';
  const std::size_t size = argument.size();
  for (std::size_t i = 0; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(argument[i]);
    switch (byte) {
      case '\\':
        script += "\\\\";
        continue;
      case '\'':
        script += "\\'";
        continue;
      case '"':
        script += "\\\"";
        continue;
      case '\n':
        script += "\\n";
        continue;
      case '\r':
        script += "\\r";
        continue;
      default:
        break;
    }
    if (byte < 0x20 || byte == 0x7F) {
      script += "\\u00";
      script += kHexDigits[byte >> 4];
      script += kHexDigits[byte & 0x0F];
      continue;
    }
    // U+2028 and U+2029 end a line in older script engines, so they are
    // escaped too: E2 80 A8 and E2 80 A9 in UTF-8.
    if (byte == 0xE2 && i + 2 < size && argument[i + 1] == '\x80' &&
        (argument[i + 2] == '\xA8' || argument[i + 2] == '\xA9')) {
      script += argument[i + 2] == '\xA8' ? "\\u2028" : "\\u2029";
      i += 2;
      continue;
    }
    script += argument[i];
  }
  script += '\'';
}

void AppendQuoted(std::string& script, const std::string& argument, ScriptQuoting quoting) {
  if (quoting == ScriptQuoting::Strict) {
    AppendStrictlyQuoted(script, argument);
  } else {
    AppendCompatiblyQuoted(script, argument);
  }
}

}  // namespace

const std::string HostControlInstance::WEBSIDEFUNCNAME_PING = "tavoInterop_Ping";
const std::string HostControlInstance::WEBSIDEFUNCNAME_HOSTSERVICEUPDATES =
    "tavoInterop_HostServiceListUpdate";
const std::string HostControlInstance::WEBSIDEFUNCNAME_INVOKEWEBMETHOD = "tavoInterop_WebMethod";
const std::string HostControlInstance::WEBSIDEFUNCNAME_INVOKEWEBEVENT = "tavoInterop_WebEvent";
const std::string HostControlInstance::WEBSIDEFUNCNAME_REQUESTWEBSIDELIST =
    "tavoInterop_RequestWebServiceList";

HostControlInstance::HostControlInstance(IWebControl* webControl)
    : webControl(webControl),
      hostManager(HostManager::TheInstance()),
      timeOutInterval(kDefaultTimeOutMs) {
  hostManager->KnownServices()->AddChangeListener(this);
  // The lists are created after the registration above: should it throw,
  // nothing is left to free.
  // NOLINTBEGIN(cppcoreguidelines-prefer-member-initializer)
  knownServices = new Base::ObservableList<IHostServiceDescriptor*>();
  knownWebSideServices = new Base::ObservableList<ITargetServiceDesc*>();
  // NOLINTEND(cppcoreguidelines-prefer-member-initializer)
  webControl->AddLoadObserver(this);
}

HostControlInstance::~HostControlInstance() {
  {
    // From here on a time-out stands down, so that "InstanceDestroyed" is
    // the last change the listeners hear of.
    std::lock_guard<std::recursive_mutex> lock(listenerMutex_);
    destroying_ = true;
    RaisePropertyChanged("InstanceDestroyed");
  }
  if (hostManager != nullptr) {
    hostManager->KnownServices()->RemoveChangeListener(this);
    hostManager = nullptr;
  }
  if (webControl != nullptr) {
    webControl->RemoveLoadObserver(this);
    webControl = nullptr;
  }
  DisposeTimer();
  for (int i = 0; i < knownWebSideServices->GetSize(); ++i) delete knownWebSideServices->GetAt(i);
  delete knownWebSideServices;
  knownWebSideServices = nullptr;
}

std::string HostControlInstance::NameOfState(HostContentState state) {
  switch (state) {
    case NoContent:
      return "NoContent";
    case Navigating:
      return "Navigating";
    case Waiting:
      return "Waiting";
    case TimedOut:
      return "TimedOut";
    case Initializing:
      return "Initializing";
    case LoadedCanTalk:
      return "LoadedCanTalk";
    case LoadedNoTalk:
      return "LoadedNoTalk";
    case LoggedIn:
      return "LoggedIn";
  }
  return "Unknown";
}

// ---- Launch and states ------------------------------------------------------

bool HostControlInstance::GetActiveContent() const { return activeContent; }

bool HostControlInstance::LaunchToTarget(TargetConfig* target, bool force) {
  if (!force && GetActiveContent()) return false;
  activeTarget = target;
  DoStartLaunch(target->GetTarget());
  return true;
}

void HostControlInstance::LaunchToTarget(TargetConfig* target) { LaunchToTarget(target, true); }

TargetConfig* HostControlInstance::GetActiveTarget() const { return activeTarget; }

void HostControlInstance::DoStartLaunch(std::string target) {
  DisposeTimer();
  SetContentState(Navigating);
  webControl->Navigate(target);
  auto* fresh = new Timer(this, static_cast<int>(timeOutInterval));
  Timer* previous = nullptr;
  {
    std::lock_guard<std::mutex> lock(stateMutex_);
    previous = std::exchange(timer, fresh);
  }
  // Only reachable if a listener launched again from inside Navigate.
  delete previous;
}

void HostControlInstance::DisposeTimer() {
  Timer* doomed = nullptr;
  {
    std::lock_guard<std::mutex> lock(stateMutex_);
    doomed = std::exchange(timer, nullptr);
  }
  // Deleted outside the lock: the destructor may wait for a check that is
  // calling OnTimerElapsed, which takes the lock.
  delete doomed;
}

HostContentState HostControlInstance::GetContentState() {
  std::lock_guard<std::mutex> lock(stateMutex_);
  return contentState;
}

void HostControlInstance::SetContentState(HostContentState state) {
  {
    std::lock_guard<std::mutex> lock(stateMutex_);
    if (contentState == state) return;
    contentState = state;
  }
  RaiseChange("ContentState");
}

void HostControlInstance::SetWebSideVersion(std::string version) {
  if (version == webSideVersion) return;
  webSideVersion = std::move(version);
  RaiseChange("WebSideVersion");
}

std::string HostControlInstance::GetWebSideVersion() const { return webSideVersion; }

void HostControlInstance::RaiseChange(const std::string& propertyName) {
  std::lock_guard<std::recursive_mutex> lock(listenerMutex_);
  RaisePropertyChanged(propertyName);
}

void HostControlInstance::AddChangeListener(Base::IPropertyChangeListener* listener) {
  std::lock_guard<std::recursive_mutex> lock(listenerMutex_);
  BaseObservableObject::AddChangeListener(listener);
}

void HostControlInstance::RemoveChangeListener(Base::IPropertyChangeListener* listener) {
  std::lock_guard<std::recursive_mutex> lock(listenerMutex_);
  BaseObservableObject::RemoveChangeListener(listener);
}

void HostControlInstance::SetActiveContent(bool /*active*/) {
  // Deliberately nothing: active content is never set, so GetActiveContent
  // stays false and a launch without force always proceeds.
}

double HostControlInstance::GetTimeOutInterval() const {
  return static_cast<double>(timeOutInterval);
}

void HostControlInstance::SetTimeOutInterval(unsigned int intervalMs) {
  timeOutInterval = intervalMs;
}

void HostControlInstance::SetScriptQuoting(ScriptQuoting quoting) { scriptQuoting_.store(quoting); }

ScriptQuoting HostControlInstance::GetScriptQuoting() const { return scriptQuoting_.load(); }

void HostControlInstance::OnLoadCompleted() {
  HostContentState state = NoContent;
  {
    // Reading Navigating and moving on to Waiting is one step for a time-out
    // that fires on the timer thread meanwhile (it takes the same lock):
    // otherwise its TimedOut could be overwritten by Waiting, leaving the
    // instance waiting with no timer left to end the wait.
    std::lock_guard<std::recursive_mutex> lock(listenerMutex_);
    state = GetContentState();
    if (state == Navigating) SetContentState(Waiting);
  }
  // The web control calls this from its own event dispatch, which has nobody
  // to pass a failure on to and may end the process on an exception. So a
  // standard exception of the handshake (a page's service list that is not
  // JSON, say) ends here, in the log; the state stays as the handshake left it.
  try {
    // Initializing shakes hands; every other state, Navigating included, pings.
    if (state == Initializing) {
      DoHandShake();
    } else {
      PingWebSide();
    }
  } catch (const std::exception& e) {
    WriteLogLine(std::string("HostControlInstance::OnLoadCompleted - ") + e.what());
  }
}

void HostControlInstance::WebControl_LoadCompleted() { OnLoadCompleted(); }

void HostControlInstance::WebSideStartHandShake() {
  DisposeTimer();
  switch (GetContentState()) {
    case Navigating:
      SetContentState(Initializing);
      break;
    case Waiting:
      SetContentState(Initializing);
      DoHandShake();
      break;
    case LoadedCanTalk:
    case LoggedIn:
      DoHandShake();
      break;
    case NoContent:
    case TimedOut:
    case Initializing:
    case LoadedNoTalk:
      break;
  }
}

void HostControlInstance::DoHandShake() {
  SetContentState(Initializing);
  canTalk = PingWebSide();
  HostContentState finalState = LoadedNoTalk;
  if (canTalk && SendServiceListToWeb(hostManager->KnownServices()) &&
      SendServiceListToWeb(knownServices) && RequestWebSideServices()) {
    SetContentState(LoadedCanTalk);
    BaseServiceDescriptor startup(kStartupNotificationFqn, kStartupNotificationVersion);
    try {
      InvokeWebEvent(&startup, "");
    } catch (...) {
      WriteLogLine("Error invoking the startup notification.");
    }
    finalState = LoadedCanTalk;
  }
  SetContentState(finalState);
}

bool HostControlInstance::PingWebSide() {
  std::string version;
  try {
    version = InvokeScriptFunction(WEBSIDEFUNCNAME_PING, hostManager->GetVersion());
  } catch (const IWebControl::ScriptException&) {
    WriteLogLine("Caught exception running " + WEBSIDEFUNCNAME_PING);
    return false;
  }
  SetWebSideVersion(std::move(version));
  return true;
}

void HostControlInstance::OnTimerElapsed() {
  WriteLogLine("HostControlInstance::OnTimerElapsed");
  TimeOut_Elapsed();
}

void HostControlInstance::TimeOut_Elapsed() {
  {
    std::unique_lock<std::recursive_mutex> lock(listenerMutex_, std::defer_lock);
    if (!LockUnlessTimerAbandoned(lock) || destroying_) return;
    const HostContentState state = GetContentState();
    if (state == Navigating || state == Waiting) SetContentState(TimedOut);
  }
  DisposeTimer();
}

bool HostControlInstance::LockUnlessTimerAbandoned(std::unique_lock<std::recursive_mutex>& lock) {
  // The application's thread may hold the lock while it notifies listeners,
  // and a listener may launch again or start the handshake, which deletes the
  // timer and so waits for this very call to end. Waiting for the lock here
  // would then never end. Such a thread has taken the timer away first, so
  // this call gives the time-out up once it sees no timer: the application
  // has cancelled it.
  while (!lock.try_lock()) {
    {
      std::lock_guard<std::mutex> state(stateMutex_);
      if (timer == nullptr) return false;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  return true;
}

void HostControlInstance::OnListChanged(
    const Base::ListChangeEvent<IHostServiceDescriptor*>& /*event*/) {
  KnownServices_ContentChanged();
}

void HostControlInstance::KnownServices_ContentChanged() { WriteLogLine("service list changed"); }

// ---- Calls into the page ------------------------------------------------------

std::string HostControlInstance::InvokeScriptFunction(std::string name) {
  name += "();";
  return webControl->ExecuteScript(std::move(name));
}

std::string HostControlInstance::InvokeScriptFunction(std::string name, std::string arg) {
  std::string script;
  script.reserve(name.size() + arg.size() + 8);
  script += name;
  script += '(';
  AppendQuoted(script, arg, scriptQuoting_.load());
  script += ");";
  return webControl->ExecuteScript(std::move(script));
}

std::string HostControlInstance::InvokeScriptFunction(std::string name, std::string arg1,
                                                      std::string arg2) {
  std::string script;
  script.reserve(name.size() + arg1.size() + arg2.size() + 16);
  script += name;
  script += '(';
  const ScriptQuoting quoting = scriptQuoting_.load();
  AppendQuoted(script, arg1, quoting);
  script += ',';
  AppendQuoted(script, arg2, quoting);
  script += ");";
  return webControl->ExecuteScript(std::move(script));
}

void HostControlInstance::CheckResponseForError(std::string response) {
  if (response.compare(0, kExceptionPrefixLength, kExceptionPrefix) != 0) return;
  ExceptionHolder holder;
  holder.FromJsonString(response);
  if (holder.Exception.name.empty() && holder.Exception.message.empty()) {
    throw std::invalid_argument("Could not decipher web side error: " + response);
  }
  throw std::runtime_error(holder.Exception.name + " " + holder.Exception.message);
}

std::string HostControlInstance::InvokeWebFunction(const std::string& function,
                                                   ITargetServiceDesc* service,
                                                   std::string payload) {
  const HostContentState state = GetContentState();
  if (state != LoadedCanTalk && state != LoggedIn) {
    throw std::runtime_error("Cannot talk to hosted content");
  }
  try {
    std::string descriptorJson = JsonSerializationHelper::GetServiceDescJson(service);
    std::string result =
        InvokeScriptFunction(function, std::move(descriptorJson), std::move(payload));
    CheckResponseForError(result);
    return result;
  } catch (const IWebControl::ScriptException& e) {
    // The line names the host-service-list function for both calls; the text
    // is part of the log contract and kept as it is.
    WriteLogLine("Caught exception running " + WEBSIDEFUNCNAME_HOSTSERVICEUPDATES);
    throw IWebControl::ScriptException(e);
  }
}

std::string HostControlInstance::InvokeWebMethod(ITargetServiceDesc* service, std::string payload) {
  return InvokeWebFunction(WEBSIDEFUNCNAME_INVOKEWEBMETHOD, service, std::move(payload));
}

void HostControlInstance::InvokeWebEvent(ITargetServiceDesc* service, std::string payload) {
  InvokeWebFunction(WEBSIDEFUNCNAME_INVOKEWEBEVENT, service, std::move(payload));
}

bool HostControlInstance::SendServiceListToWeb(
    Base::IObservableList<IHostServiceDescriptor*>* list) {
  if (list == nullptr) return true;
  std::vector<DataServiceDescriptor*> descriptors;
  std::string listJson;
  {
    std::vector<std::unique_ptr<DataServiceDescriptor>> owned;
    const int size = list->GetSize();
    owned.reserve(static_cast<std::size_t>(size));
    descriptors.reserve(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
      IHostServiceDescriptor* entry = list->GetAt(i);
      owned.push_back(
          std::make_unique<DataServiceDescriptor>(entry->GetFQN(), entry->GetSvcVersion()));
      descriptors.push_back(owned.back().get());
    }
    listJson = JsonSerializationHelper::Serialize(descriptors);
  }
  try {
    InvokeScriptFunction(WEBSIDEFUNCNAME_HOSTSERVICEUPDATES, "Add", std::move(listJson));
  } catch (const IWebControl::ScriptException&) {
    WriteLogLine("Caught exception running " + WEBSIDEFUNCNAME_HOSTSERVICEUPDATES);
    return false;
  }
  return true;
}

bool HostControlInstance::RequestWebSideServices() {
  std::string result;
  try {
    result = InvokeScriptFunction(WEBSIDEFUNCNAME_REQUESTWEBSIDELIST);
  } catch (const IWebControl::ScriptException&) {
    WriteLogLine("Caught exception running " + WEBSIDEFUNCNAME_REQUESTWEBSIDELIST);
    return false;
  }
  if (!result.empty()) WebSideServiceListUpdate("Replace", std::move(result));
  return true;
}

std::string HostControlInstance::WebSideServiceListUpdate(std::string action,
                                                          std::string listJson) {
  // Own the temporary descriptors at once, so that they are freed however
  // this call ends, an unknown action included.
  std::vector<std::unique_ptr<DataServiceDescriptor>> descriptors;
  {
    std::unique_ptr<std::vector<DataServiceDescriptor*>> read(
        JsonSerializationHelper::Deserialize<std::vector<DataServiceDescriptor*>>(
            std::move(listJson)));
    descriptors.reserve(read->size());
    for (DataServiceDescriptor* descriptor : *read) descriptors.emplace_back(descriptor);
  }

  if (port::CompareIgnoreCase(action.c_str(), "Replace") != 0) {
    throw std::runtime_error("unknown action");
  }
  for (int i = 0; i < knownWebSideServices->GetSize(); ++i) delete knownWebSideServices->GetAt(i);
  knownWebSideServices->Clear();
  for (const auto& descriptor : descriptors) {
    knownWebSideServices->Add(new WebSideServiceDescriptor(descriptor.get()));
  }
  return {};
}

Base::IObservableList<ITargetServiceDesc*>* HostControlInstance::GetKnownWebSideServices() const {
  return knownWebSideServices;
}

// ---- Host services on this instance -------------------------------------------

IHostManager* HostControlInstance::GetGlobalConfig() const { return hostManager; }

Base::IObservableList<IHostServiceDescriptor*>* HostControlInstance::KnownServices() const {
  return knownServices;
}

void HostControlInstance::RegisterService(IHostServiceDescriptor* descriptor) {
  if (descriptor == nullptr) throw std::invalid_argument("descriptor");
  std::string fqn = descriptor->GetFQN();
  if (fqn.empty()) throw std::invalid_argument("fqn");
  std::string version = descriptor->GetSvcVersion();
  if (version.empty()) throw std::invalid_argument("version");
  IHostServiceDescriptor* existing = DoLookupService(std::move(fqn), std::move(version));
  if (existing == descriptor) return;
  if (existing != nullptr) {
    knownServices->Remove(existing);
    delete existing;
  }
  knownServices->Add(descriptor);
}

IHostServiceDescriptor* HostControlInstance::DoLookupService(std::string fqn, std::string version) {
  const int size = knownServices->GetSize();
  for (int i = 0; i < size; ++i) {
    IHostServiceDescriptor* entry = knownServices->GetAt(i);
    if (entry->GetFQN() == fqn && entry->GetSvcVersion() == version) return entry;
  }
  return nullptr;
}

IHostServiceDescriptor* HostControlInstance::LookupService(ITargetServiceDesc* service) {
  if (service != nullptr) {
    IHostServiceDescriptor* found = DoLookupService(service->GetFQN(), service->GetSvcVersion());
    if (found != nullptr) return found;
  }
  return hostManager->LookupService(service);
}

IHostServiceDescriptor* HostControlInstance::LookupService(DataServiceDescriptor* service) {
  if (service != nullptr) {
    IHostServiceDescriptor* found = DoLookupService(service->FQN, service->SvcVersion);
    if (found != nullptr) return found;
  }
  return hostManager->LookupService(service);
}

bool HostControlInstance::IsServiceSupported(ITargetServiceDesc* service) {
  return LookupService(service) != nullptr;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
