#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEREQUESTHOSTAUTHSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEREQUESTHOSTAUTHSVC_H_

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The callback through which the application reports the outcome of one host
// login request: `context` is the pointer it was handed with the request,
// `isAuthenticated` whether the user is now logged in, and `error` the failure
// record (empty, i.e. both texts empty, when there was no error). Callable
// from any thread, exactly once per request.
using RequestHostAuthCallback = void (*)(void* context, bool isAuthenticated,
                                         const Interop::ExceptionInfo& error);

// Implemented by the application to log the user in on the page's request
// (RequestHostAuthSvc), for instance by showing its own login.
//
// The service holds the handler by plain pointer and never deletes it; the
// handler must outlive the service.
class WEVLIN_EXPORT IHandleRequestHostAuthSvc {
 public:
  IHandleRequestHostAuthSvc() = default;
  IHandleRequestHostAuthSvc(const IHandleRequestHostAuthSvc&) = default;
  IHandleRequestHostAuthSvc& operator=(const IHandleRequestHostAuthSvc&) = default;

  // Starts a login. Called on the thread that delivered the page's event;
  // should return promptly and finish the login elsewhere.
  //
  // The handler must call `callback(context, isAuthenticated, error)` exactly
  // once, from any thread. The callback sends the outcome to the page and
  // frees `context`; until then `context` is the handler's to keep and must not
  // be touched afterwards. If the callback is never called, the request's
  // context is leaked. The control instance that delivered the request must
  // still exist when the callback runs.
  virtual void OnRequestHostAuth(void* context, RequestHostAuthCallback callback) = 0;

 protected:
  // Not virtual: the library never destroys a handler.
  ~IHandleRequestHostAuthSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEREQUESTHOSTAUTHSVC_H_
