#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_SESSIONPROXY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_SESSIONPROXY_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/services/BaseServiceProxy.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07 {

// Proxy to the page's service
// "tavo.wevlin.infrastructure.services.session.Session.client" in version
// "_2014_07": tells the page about the user's session, as an event.
//
// The proxy does not own its instance, which must outlive every call. Use it
// on the thread that drives the browser control.
class WEVLIN_EXPORT SessionProxy : public BaseServiceProxy {
 public:
  // Creates a proxy talking to the page of `instance` (may be null: the proxy
  // then sends nothing).
  explicit SessionProxy(Interop::IHostControlInstance* instance);
  ~SessionProxy() override;

  // Sends `session` to the page as an event; nothing is awaited. Does nothing
  // without an instance. Whether the page announced the service is not
  // tested first: the instance decides. Exceptions of the instance (e.g.
  // std::runtime_error "Cannot talk to hosted content", or a script failure)
  // pass through.
  void UpdateSession(const SessionMsg& session);
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_SESSIONPROXY_H_
