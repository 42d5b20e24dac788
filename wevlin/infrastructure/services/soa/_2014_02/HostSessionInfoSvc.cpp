#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoSvc.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

HostSessionInfoSvc::HostSessionInfoSvc(IHandleHostSessionInfoSvc* handler)
    : BaseHostingService(ServiceNames::kHostSessionInfoHost, ServiceVersions::k2014_02),
      handler_(handler) {}

HostSessionInfoSvc::HostSessionInfoSvc(const HostSessionInfoSvc& other) = default;

HostSessionInfoSvc& HostSessionInfoSvc::operator=(const HostSessionInfoSvc& other) = default;

HostSessionInfoSvc::~HostSessionInfoSvc() = default;

std::string HostSessionInfoSvc::DoInvokeMethod(Interop::IHostControlInstance* instance,
                                               Interop::IHostServiceDescriptor* descriptor,
                                               std::string /*payload*/) {
  return handler_->GetHostSessionInfo(instance, descriptor).ToJsonString();
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
