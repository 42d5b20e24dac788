#include "wevlin/testing/ScriptedPage.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ExceptionHolder.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/testing/internal/ScriptLineReader.h"

namespace Com::Velmora::TAVO::Wevlin::Testing {

namespace interop = Infrastructure::Interop;
namespace names = Infrastructure::Services::ServiceNames;
namespace versions = Infrastructure::Services::ServiceVersions;

namespace {

// Returns `text` with the letters A to Z made lower case.
std::string AsciiLower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

bool Same(const ScriptedPage::Service& a, const ScriptedPage::Service& b) {
  return a.fqn == b.fqn && a.version == b.version;
}

std::string DescriptorJson(const std::string& fqn, const std::string& version) {
  return interop::DataServiceDescriptor(fqn, version).ToJsonString();
}

// Returns the wire JSON of `services`, e.g. [{"FQN": "a", "SvcVersion": "1"}].
std::string ListJson(const std::vector<ScriptedPage::Service>& services) {
  std::vector<interop::DataServiceDescriptor> descriptors;
  descriptors.reserve(services.size());
  for (const ScriptedPage::Service& service : services) {
    descriptors.emplace_back(service.fqn, service.version);
  }
  std::vector<interop::DataServiceDescriptor*> list;
  list.reserve(descriptors.size());
  for (interop::DataServiceDescriptor& descriptor : descriptors) list.push_back(&descriptor);
  return interop::JsonSerializationHelper::Serialize(list);
}

}  // namespace

ScriptedPage::ScriptedPage() = default;

ScriptedPage::~ScriptedPage() = default;

void ScriptedPage::Navigate(std::string target) {
  std::lock_guard<std::mutex> lock(mutex_);
  navigations_.push_back(std::move(target));
}

std::optional<ScriptedPage::Call> ScriptedPage::Parse(const std::string& script) {
  return Parse(script, interop::ScriptQuoting::Compatible);
}

std::optional<ScriptedPage::Call> ScriptedPage::Parse(const std::string& script,
                                                      interop::ScriptQuoting quoting) {
  Call call;
  if (!internal::ScriptLineReader::Read(script, quoting, call.function, call.args)) {
    return std::nullopt;
  }
  return call;
}

std::string ScriptedPage::ExecuteScript(std::string script) {
  std::optional<Call> call = Parse(script, Quoting);
  {
    std::lock_guard<std::mutex> lock(mutex_);
    scripts_.push_back(script);
    if (!call) throw ScriptException("SyntaxError: unparsable script", script);
    calls_.push_back(*call);
    auto failure = failures_.find(call->function);
    if (failure != failures_.end()) {
      if (failure->second.successesLeft == 0) throw ScriptException(failure->second.exception);
      --failure->second.successesLeft;
    }
  }
  return Answer(*call);
}

std::string ScriptedPage::Answer(const Call& call) {
  const auto arg = [&call](std::size_t index) {
    return index < call.args.size() ? call.args[index] : std::string();
  };
  if (call.function == "tavoInterop_Ping") return PageVersion;
  if (call.function == "tavoInterop_HostServiceListUpdate") {
    TakeHostServices(arg(0), arg(1));
    return {};
  }
  if (call.function == "tavoInterop_RequestWebServiceList") return AnswerServiceList();
  if (call.function == "tavoInterop_WebMethod") return AnswerMethod(arg(0), arg(1));
  if (call.function == "tavoInterop_WebEvent") return AnswerEvent(arg(0), arg(1));
  throw ScriptException("ReferenceError: " + call.function + " is not defined", call.function);
}

std::string ScriptedPage::AnswerMethod(const std::string& descriptorJson,
                                       const std::string& payload) {
  const std::optional<PageService> service = FindService(descriptorJson);
  try {
    if (service) {
      if (!service->method) {
        return ExceptionRecord("Error", "The web service has no method handler: " +
                                            service->name.fqn + " ver: " + service->name.version);
      }
      return service->method(payload);
    }
    if (MethodHandler) return MethodHandler(descriptorJson, payload);
  } catch (const std::exception& e) {
    return interop::JsonSerializationHelper::GetJsonForException(e);
  }
  return MethodReply;
}

std::string ScriptedPage::AnswerEvent(const std::string& descriptorJson,
                                      const std::string& payload) {
  const std::optional<PageService> service = FindService(descriptorJson);
  try {
    if (service) {
      if (!service->event) {
        return ExceptionRecord("Error", "The web service has no event handler: " +
                                            service->name.fqn + " ver: " + service->name.version);
      }
      service->event(payload);
      return {};
    }
    if (EventHandler) return EventHandler(descriptorJson, payload);
  } catch (const std::exception& e) {
    return interop::JsonSerializationHelper::GetJsonForException(e);
  }
  return EventReply;
}

std::string ScriptedPage::AnswerServiceList() {
  if (!WebServiceList.empty()) return WebServiceList;
  const std::vector<Service> services = Services();
  return services.empty() ? std::string() : ListJson(services);
}

std::optional<ScriptedPage::PageService> ScriptedPage::FindService(
    const std::string& descriptorJson) const {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (services_.empty()) return std::nullopt;
  }
  interop::DataServiceDescriptor descriptor;
  try {
    descriptor.FromJsonString(descriptorJson);
  } catch (const std::exception&) {
    return std::nullopt;
  }
  const Service wanted{descriptor.FQN, descriptor.SvcVersion};
  std::lock_guard<std::mutex> lock(mutex_);
  for (const PageService& service : services_) {
    if (Same(service.name, wanted)) return service;
  }
  return std::nullopt;
}

void ScriptedPage::TakeHostServices(const std::string& action, const std::string& listJson) {
  const std::string verb = AsciiLower(action);
  if (verb != "add" && verb != "replace" && verb != "remove") return;
  std::vector<Service> list;
  try {
    std::unique_ptr<std::vector<interop::DataServiceDescriptor*>> read(
        interop::JsonSerializationHelper::Deserialize<std::vector<interop::DataServiceDescriptor*>>(
            listJson));
    for (interop::DataServiceDescriptor* descriptor : *read) {
      list.push_back(Service{descriptor->FQN, descriptor->SvcVersion});
      delete descriptor;
    }
  } catch (const std::exception&) {
    return;
  }
  std::lock_guard<std::mutex> lock(mutex_);
  if (verb == "replace") hostServices_.clear();
  for (const Service& service : list) {
    const auto known = std::find_if(hostServices_.begin(), hostServices_.end(),
                                    [&service](const Service& s) { return Same(s, service); });
    if (verb == "remove") {
      if (known != hostServices_.end()) hostServices_.erase(known);
    } else if (known == hostServices_.end()) {
      hostServices_.push_back(service);
    }
  }
}

void ScriptedPage::AddLoadObserver(ILoadObserver* observer) {
  std::lock_guard<std::mutex> lock(mutex_);
  observers_.push_back(observer);
}

void ScriptedPage::RemoveLoadObserver(ILoadObserver* observer) {
  std::lock_guard<std::mutex> lock(mutex_);
  observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void ScriptedPage::CompleteLoad() {
  std::vector<ILoadObserver*> observers;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    observers = observers_;
  }
  for (ILoadObserver* observer : observers) observer->OnLoadCompleted();
}

void ScriptedPage::Fail(const std::string& name, ScriptException e) { FailAfter(name, 0, e); }

void ScriptedPage::FailAfter(const std::string& name, int successes, ScriptException e) {
  std::lock_guard<std::mutex> lock(mutex_);
  failures_.insert_or_assign(name, Failure{successes < 0 ? 0 : successes, e});
}

void ScriptedPage::Heal(const std::string& name) {
  std::lock_guard<std::mutex> lock(mutex_);
  failures_.erase(name);
}

void ScriptedPage::RegisterMethod(const std::string& fqn, const std::string& version,
                                  ServiceMethod method) {
  std::lock_guard<std::mutex> lock(mutex_);
  const Service name{fqn, version};
  for (PageService& service : services_) {
    if (Same(service.name, name)) {
      service.method = std::move(method);
      return;
    }
  }
  services_.push_back(PageService{name, std::move(method), ServiceEvent()});
}

void ScriptedPage::RegisterEvent(const std::string& fqn, const std::string& version,
                                 ServiceEvent event) {
  std::lock_guard<std::mutex> lock(mutex_);
  const Service name{fqn, version};
  for (PageService& service : services_) {
    if (Same(service.name, name)) {
      service.event = std::move(event);
      return;
    }
  }
  services_.push_back(PageService{name, ServiceMethod(), std::move(event)});
}

bool ScriptedPage::UnregisterService(const std::string& fqn, const std::string& version) {
  std::lock_guard<std::mutex> lock(mutex_);
  const Service name{fqn, version};
  const auto found =
      std::find_if(services_.begin(), services_.end(),
                   [&name](const PageService& service) { return Same(service.name, name); });
  if (found == services_.end()) return false;
  services_.erase(found);
  return true;
}

std::vector<ScriptedPage::Service> ScriptedPage::Services() const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Service> result;
  for (const PageService& service : services_) result.push_back(service.name);
  return result;
}

std::string ScriptedPage::ServiceListJson() const { return ListJson(Services()); }

std::vector<ScriptedPage::Service> ScriptedPage::HostServices() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return hostServices_;
}

bool ScriptedPage::HostOffers(const std::string& fqn, const std::string& version) const {
  std::lock_guard<std::mutex> lock(mutex_);
  const Service wanted{fqn, version};
  return std::any_of(hostServices_.begin(), hostServices_.end(),
                     [&wanted](const Service& service) { return Same(service, wanted); });
}

void ScriptedPage::ConnectHost(interop::HostAPI* api) {
  std::lock_guard<std::mutex> lock(mutex_);
  host_ = api;
}

interop::HostAPI& ScriptedPage::Host() const {
  std::lock_guard<std::mutex> lock(mutex_);
  if (host_ == nullptr) throw std::logic_error("ScriptedPage: no HostAPI connected");
  return *host_;
}

std::string ScriptedPage::CallHostMethod(const std::string& fqn, const std::string& version,
                                         const std::string& payload) {
  interop::HostAPI& host = Host();
  return host.tavoHostMethod(DescriptorJson(fqn, version), payload);
}

std::string ScriptedPage::RaiseHostEvent(const std::string& fqn, const std::string& version,
                                         const std::string& payload) {
  interop::HostAPI& host = Host();
  return host.tavoHostEvent(DescriptorJson(fqn, version), payload);
}

std::string ScriptedPage::PingHost() { return Host().tavoHostPing(); }

std::string ScriptedPage::AnnounceServices() {
  interop::HostAPI& host = Host();
  return host.tavoHost_WebSideServiceListUpdate("Replace", ServiceListJson());
}

std::string ScriptedPage::StartHandshake() { return Host().tavoHost_WebSideStartHandShake(); }

std::string ScriptedPage::SendStartupNotification() {
  return RaiseHostEvent(names::kStartupNotificationHost, versions::k2014_02, std::string());
}

void ScriptedPage::Talk(interop::IHostControlInstance& instance, interop::TargetConfig& target) {
  interop::HostAPI& host = Host();
  instance.LaunchToTarget(&target);
  CompleteLoad();
  const std::string answer = host.tavoHost_WebSideStartHandShake();
  if (!answer.empty()) {
    throw std::runtime_error("ScriptedPage::Talk: the host answered the handshake with " + answer);
  }
  const interop::HostContentState state = instance.GetContentState();
  if (state != interop::LoadedCanTalk) {
    throw std::runtime_error("ScriptedPage::Talk: the handshake ended in " +
                             interop::HostControlInstance::NameOfState(state) +
                             ", not in LoadedCanTalk");
  }
}

void ScriptedPage::LogIn(interop::IHostControlInstance& instance, interop::TargetConfig& target) {
  Talk(instance, target);
  const std::string answer = SendStartupNotification();
  if (!answer.empty()) {
    throw std::runtime_error(
        "ScriptedPage::LogIn: the host answered the startup notification with " + answer);
  }
  const interop::HostContentState state = instance.GetContentState();
  if (state != interop::LoggedIn) {
    throw std::runtime_error("ScriptedPage::LogIn: the instance is in " +
                             interop::HostControlInstance::NameOfState(state) +
                             " after the startup notification, not in LoggedIn");
  }
}

std::vector<std::string> ScriptedPage::Scripts() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return scripts_;
}

std::vector<ScriptedPage::Call> ScriptedPage::Calls() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return calls_;
}

std::vector<ScriptedPage::Call> ScriptedPage::CallsOf(const std::string& name) const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Call> result;
  for (const Call& call : calls_) {
    if (call.function == name) result.push_back(call);
  }
  return result;
}

std::vector<std::string> ScriptedPage::Navigations() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return navigations_;
}

std::size_t ScriptedPage::ObserverCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return observers_.size();
}

void ScriptedPage::ClearRecords() {
  std::lock_guard<std::mutex> lock(mutex_);
  scripts_.clear();
  calls_.clear();
  navigations_.clear();
}

std::string ScriptedPage::ExceptionRecord(const std::string& name, const std::string& message) {
  interop::ExceptionHolder holder;
  holder.Exception.name = name;
  holder.Exception.message = message;
  return holder.ToJsonString();
}

bool ScriptedPage::IsExceptionRecord(const std::string& answer) {
  return answer.rfind("{\"Exception", 0) == 0;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Testing
