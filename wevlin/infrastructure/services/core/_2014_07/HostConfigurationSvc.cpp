#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationSvc.h"

#include <stdexcept>

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

HostConfigurationSvc::HostConfigurationSvc(IHandleHostConfigurationSvc* handler)
    : BaseHostingService(ServiceNames::kHostConfigurationHost, ServiceVersions::k2014_07),
      handler_(handler) {}

HostConfigurationSvc::~HostConfigurationSvc() = default;

std::string HostConfigurationSvc::DoInvokeMethod(Interop::IHostControlInstance* instance,
                                                 Interop::IHostServiceDescriptor* descriptor,
                                                 std::string /*payload*/) {
  if (handler_ == nullptr) {
    throw std::logic_error("No handler for the host configuration service");
  }
  return handler_->GetHostConfiguration(instance, descriptor).ToJsonString();
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
