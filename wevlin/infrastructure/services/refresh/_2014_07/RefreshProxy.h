#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHPROXY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHPROXY_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/services/BaseServiceProxy.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {

// Proxy to the page's service
// "tavo.wevlin.infrastructure.services.refresh.Refresh.client" in version
// "_2014_07": tells the page which objects have changed, as an event.
//
// The proxy does not own its instance, which must outlive every call. Use it
// on the thread that drives the browser control.
class WEVLIN_EXPORT RefreshProxy : public BaseServiceProxy {
 public:
  // Creates a proxy talking to the page of `instance` (may be null: the proxy
  // then sends nothing).
  explicit RefreshProxy(Interop::IHostControlInstance* instance);
  ~RefreshProxy() override;

  // Sends `refresh` to the page as an event; nothing is awaited. Does nothing
  // without an instance. Whether the page announced the service is not
  // tested first: the instance decides. Exceptions of the instance (e.g.
  // std::runtime_error "Cannot talk to hosted content", or a script failure)
  // pass through.
  void SendRefresh(const RefreshMsg& refresh);
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHPROXY_H_
