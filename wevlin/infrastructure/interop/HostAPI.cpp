#include "wevlin/infrastructure/interop/HostAPI.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {
namespace {

// Runs `call` and turns a standard exception into the exception record that
// the page receives as the result. The only place where that happens.
template <typename Call>
std::string AnswerForScript(Call&& call) {
  try {
    return call();
  } catch (const std::exception& e) {
    return JsonSerializationHelper::GetJsonForException(e);
  }
}

}  // namespace

HostAPI::HostAPI(IHostControlInstance* instance) : hostControlInstance(instance) {
  if (hostControlInstance != nullptr) hostManager = hostControlInstance->GetGlobalConfig();
}

HostAPI::HostAPI(const HostAPI& other) = default;

HostAPI& HostAPI::operator=(const HostAPI& other) = default;

HostAPI::~HostAPI() = default;

IHostServiceDescriptor* HostAPI::Resolve(const std::string& descriptorJson) {
  DataServiceDescriptor data;
  data.FromJsonString(descriptorJson);
  IHostServiceDescriptor* descriptor =
      hostControlInstance != nullptr ? hostControlInstance->LookupService(&data) : nullptr;
  if (descriptor == nullptr) {
    throw std::invalid_argument("No matching service descriptor found for: " + data.FQN +
                                " ver: " + data.SvcVersion);
  }
  return descriptor;
}

std::string HostAPI::tavoHostMethod(std::string descriptorJson, std::string payload) {
  return AnswerForScript([&] {
    IHostServiceDescriptor* descriptor = Resolve(descriptorJson);
    return descriptor->GetInteraction()->InvokeMethod(hostControlInstance, descriptor,
                                                      std::move(payload));
  });
}

std::string HostAPI::tavoHostEvent(std::string descriptorJson, std::string payload) {
  return AnswerForScript([&] {
    IHostServiceDescriptor* descriptor = Resolve(descriptorJson);
    descriptor->GetInteraction()->InvokeEvent(hostControlInstance, descriptor, std::move(payload));
    return std::string();
  });
}

std::string HostAPI::tavoHostPing() {
  std::string result = "Pong";
  if (hostManager != nullptr) result = hostManager->GetVersion();
  return result;
}

std::string HostAPI::tavoHost_WebSideServiceListUpdate(std::string action, std::string listJson) {
  if (hostControlInstance == nullptr) return {};
  return AnswerForScript([&] {
    return hostControlInstance->WebSideServiceListUpdate(std::move(action), std::move(listJson));
  });
}

std::string HostAPI::tavoHost_WebSideStartHandShake() {
  if (hostControlInstance == nullptr) return {};
  return AnswerForScript([&] {
    hostControlInstance->WebSideStartHandShake();
    return std::string();
  });
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
