#include "wevlin/infrastructure/services/clientinfo/_2014_07/ClientInfoProxy.h"

#include <exception>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/core/_2014_07/BaseKeyValueMessage.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ClientInfo::_2014_07 {
namespace {

// Reads the page's reply into `message`. A reply that fails to parse, by the
// contract's result or by an exception (e.g. text that is not a JSON
// object), gives false; that is a bad answer, not a failed call.
bool Parse(Core::_2014_07::BaseKeyValueMessage& message, const std::string& reply) {
  try {
    return message.FromJsonString(reply);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

ClientInfoProxy::ClientInfoProxy(Interop::IHostControlInstance* instance)
    : BaseServiceProxy(instance, ServiceNames::kClientInfoClient, ServiceVersions::k2014_07) {}

ClientInfoProxy::~ClientInfoProxy() = default;

std::map<std::string, std::string> ClientInfoProxy::GetClientInfo() {
  std::map<std::string, std::string> info;
  Interop::IHostControlInstance* instance = GetHostControlInstance();
  if (instance == nullptr) return info;
  try {
    const std::string reply = instance->InvokeWebMethod(GetBaseServiceDescriptor(), std::string());
    Core::_2014_07::BaseKeyValueMessage message;
    if (!Parse(message, reply)) return info;
    // In list order, so a name given twice keeps its last value.
    for (const Pair& pair : message.Data) info[pair.Key] = pair.Value;
  } catch (...) {
    // The instance's failures are std::exceptions or the web control's
    // script exception; neither may reach the caller.
    Base::internal::WriteLogLine("Cannot call web content for GetClientInfo invocation.");
  }
  return info;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ClientInfo::_2014_07
