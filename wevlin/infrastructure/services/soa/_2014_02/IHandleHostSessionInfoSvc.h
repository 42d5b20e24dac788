#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEHOSTSESSIONINFOSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEHOSTSESSIONINFOSVC_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoResponseMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// Implemented by the application to tell the page about the host's login
// session through HostSessionInfoSvc.
//
// The service holds the handler by plain pointer and never deletes it; the
// handler must outlive the service.
class WEVLIN_EXPORT IHandleHostSessionInfoSvc {
 public:
  IHandleHostSessionInfoSvc() = default;
  IHandleHostSessionInfoSvc(const IHandleHostSessionInfoSvc&) = default;
  IHandleHostSessionInfoSvc& operator=(const IHandleHostSessionInfoSvc&) = default;

  // Returns the session information for the page of `instance`, which called
  // the service `descriptor` (both as the call arrived; either may be null
  // when the service is invoked directly). Called on every call, on the thread
  // that drives the browser control. The returned message stays owned by the
  // handler and must stay alive and unchanged until the service has written
  // it, i.e. until this call's service invocation returns.
  virtual const HostSessionInfoResponseMsg& GetHostSessionInfo(
      Interop::IHostControlInstance* instance, Interop::IHostServiceDescriptor* descriptor) = 0;

 protected:
  // Not virtual: the library never destroys a handler.
  ~IHandleHostSessionInfoSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEHOSTSESSIONINFOSVC_H_
