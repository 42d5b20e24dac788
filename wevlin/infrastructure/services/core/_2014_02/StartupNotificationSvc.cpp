#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"

#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02 {

StartupNotificationSvc::StartupNotificationSvc()
    : BaseHostingService(ServiceNames::kStartupNotificationHost, ServiceVersions::k2014_02) {}

StartupNotificationSvc::~StartupNotificationSvc() = default;

void StartupNotificationSvc::DoInvokeEvent(Interop::IHostControlInstance* instance,
                                           Interop::IHostServiceDescriptor* /*descriptor*/,
                                           std::string /*payload*/) {
  if (instance == nullptr) return;
  instance->SetContentState(Interop::LoggedIn);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02
