#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/IHandleRefreshSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {

// The host service "tavo.wevlin.infrastructure.services.refresh.Refresh.host"
// in version "_2014_07": an event with which the page tells the host about
// objects that have changed. The payload is read into a RefreshMsg and handed to the
// handler. A payload that does not parse is dropped without a word, and a
// service without handler (null) drops every event. There is no reply.
//
// The handler is not owned and must outlive the service. Whoever the service
// is registered with owns it. Called on the thread that runs the page's
// script.
class WEVLIN_EXPORT RefreshSvc : public BaseHostingService {
 public:
  // Creates the service reporting to `handler` (may be null).
  explicit RefreshSvc(IHandleRefreshSvc* handler);
  ~RefreshSvc() override;

 protected:
  // Parses `payload` and hands the message to the handler. Exceptions of the
  // handler pass through; those of the parsing do not.
  void DoInvokeEvent(Interop::IHostControlInstance* instance,
                     Interop::IHostServiceDescriptor* descriptor, std::string payload) override;

 private:
  IHandleRefreshSvc* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHSVC_H_
