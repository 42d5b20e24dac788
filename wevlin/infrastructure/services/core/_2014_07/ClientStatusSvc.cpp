#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusSvc.h"

#include <exception>
#include <string>

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {
namespace {

// Reads `payload` into `status`. A payload that fails to parse, by the
// contract's result or by an exception, gives false: the page's text must
// never make the event fail.
bool Parse(ClientStatusMsg& status, const std::string& payload) {
  try {
    return status.FromJsonString(payload);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

ClientStatusSvc::ClientStatusSvc(IHandleClientStatusSvc* handler)
    : BaseHostingService(ServiceNames::kClientStatusHost, ServiceVersions::k2014_07),
      handler_(handler) {}

ClientStatusSvc::~ClientStatusSvc() = default;

void ClientStatusSvc::DoInvokeEvent(Interop::IHostControlInstance* /*instance*/,
                                    Interop::IHostServiceDescriptor* /*descriptor*/,
                                    std::string payload) {
  ClientStatusMsg status;
  if (handler_ == nullptr) return;
  if (!Parse(status, payload)) return;
  handler_->OnClientStatus(status);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
