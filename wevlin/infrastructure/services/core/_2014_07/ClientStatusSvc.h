#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_CLIENTSTATUSSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_CLIENTSTATUSSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleClientStatusSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// The host service "tavo.wevlin.infrastructure.services.core.ClientStatus.host"
// in version "_2014_07": an event with which the page reports its state
// ("idle" or "busy"). The payload is read into a ClientStatusMsg that starts
// as "idle" and handed to the handler; a payload without "State" therefore
// arrives as "idle". A payload that does not parse is dropped without a word,
// and a service without handler (null) drops every event.
//
// The handler is not owned and must outlive the service. Whoever the service
// is registered with owns it. Called on the thread that runs the page's
// script.
class WEVLIN_EXPORT ClientStatusSvc : public BaseHostingService {
 public:
  // Creates the service reporting to `handler` (may be null).
  explicit ClientStatusSvc(IHandleClientStatusSvc* handler);
  ~ClientStatusSvc() override;

 protected:
  // Parses `payload` and hands the status to the handler. Exceptions of the
  // handler pass through; those of the parsing do not.
  void DoInvokeEvent(Interop::IHostControlInstance* instance,
                     Interop::IHostServiceDescriptor* descriptor, std::string payload) override;

 private:
  IHandleClientStatusSvc* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_CLIENTSTATUSSVC_H_
