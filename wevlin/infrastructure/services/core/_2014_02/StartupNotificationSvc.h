#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_STARTUPNOTIFICATIONSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_STARTUPNOTIFICATIONSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02 {

// The host service
// "tavo.wevlin.infrastructure.services.startup.StartupNotification.host" in
// version "_2014_02": an event with which the page reports that it has
// started up and its user is logged in. It moves the calling control instance
// to LoggedIn, whatever the payload. It has no handler.
//
// Whoever the service is registered with owns it. Called on the thread that
// runs the page's script.
class WEVLIN_EXPORT StartupNotificationSvc : public BaseHostingService {
 public:
  // Creates the service.
  StartupNotificationSvc();
  ~StartupNotificationSvc() override;

 protected:
  // Sets the content state of `instance` to LoggedIn; the payload is ignored.
  // Does nothing when `instance` is null.
  void DoInvokeEvent(Interop::IHostControlInstance* instance,
                     Interop::IHostServiceDescriptor* descriptor, std::string payload) override;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_STARTUPNOTIFICATIONSVC_H_
