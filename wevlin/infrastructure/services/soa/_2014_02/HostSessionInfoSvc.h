#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_HOSTSESSIONINFOSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_HOSTSESSIONINFOSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleHostSessionInfoSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// Host service "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host",
// version "_2014_02": a method that answers at once whether the host has an
// active login session and for which user, e.g.
// {"Version": "_2014_02", "IsSessionActive": true, "UserName": "ann"}.
// The request payload is not read.
//
// Ownership: the service holds its handler by plain pointer and never deletes
// it; whoever registers the service owns it. Threading: called on the thread
// that drives the browser control.
class WEVLIN_EXPORT HostSessionInfoSvc : public BaseHostingService {
 public:
  // Creates the service around `handler` (not owned). Precondition: `handler`
  // is not null and outlives the service.
  explicit HostSessionInfoSvc(IHandleHostSessionInfoSvc* handler);
  HostSessionInfoSvc(const HostSessionInfoSvc& other);
  HostSessionInfoSvc& operator=(const HostSessionInfoSvc& other);
  ~HostSessionInfoSvc() override;

 protected:
  // Returns the JSON text of the handler's answer for `instance` and
  // `descriptor`. Exceptions of the handler pass through.
  std::string DoInvokeMethod(Interop::IHostControlInstance* instance,
                             Interop::IHostServiceDescriptor* descriptor,
                             std::string payload) override;

 private:
  IHandleHostSessionInfoSvc* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_HOSTSESSIONINFOSVC_H_
