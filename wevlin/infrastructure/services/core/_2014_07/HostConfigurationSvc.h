#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_HOSTCONFIGURATIONSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_HOSTCONFIGURATIONSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleHostConfigurationSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// The host service "tavo.wevlin.infrastructure.services.core.HostConfiguration.host"
// in version "_2014_07": a method that answers the page with the host
// configuration (HostConfigurationResponseMsg), which it asks its handler for
// on every call. The request payload is not read.
//
// The handler is not owned and must outlive the service. A service without
// handler is a programming error of the application; it answers every call
// by throwing std::logic_error, which the page receives as an exception
// record. Whoever the service is registered with owns it. Called on the
// thread that runs the page's script.
class WEVLIN_EXPORT HostConfigurationSvc : public BaseHostingService {
 public:
  // Creates the service answering with `handler`'s configuration.
  explicit HostConfigurationSvc(IHandleHostConfigurationSvc* handler);
  ~HostConfigurationSvc() override;

 protected:
  // Returns the JSON text of the handler's configuration for `instance`.
  // Exceptions of the handler pass through.
  std::string DoInvokeMethod(Interop::IHostControlInstance* instance,
                             Interop::IHostServiceDescriptor* descriptor,
                             std::string payload) override;

 private:
  IHandleHostConfigurationSvc* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_HOSTCONFIGURATIONSVC_H_
