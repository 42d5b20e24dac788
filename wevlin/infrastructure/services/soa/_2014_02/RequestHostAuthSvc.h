#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleRequestHostAuthSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// Host service "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host",
// version "_2014_02": the page asks the host to log the user in and gets the
// outcome later, as an event to the page service that the request names.
//
// The page raises an event whose payload is a RequestHostAuthRequestMessage.
// The service checks it and calls the handler with an opaque context and
// ReplyCallback. The context is a heap-allocated std::map<std::string, void*>
// with exactly three entries: "descriptor" (the Interop::WebSideServiceDescriptor
// of the reply target), "responseMsg" (a new default RequestHostAuthResponseMsg)
// and "hostInstance" (the calling Interop::IHostControlInstance, not owned).
// The reply's "CacheId" is left empty on purpose: the page matches the
// outcome by its reply service, not by cache identifier.
//
// Ownership: the service holds its handler by plain pointer and never deletes
// it; whoever registers the service owns it. Threading: events arrive on the
// thread that drives the browser control; the callback may be called from any
// thread.
class WEVLIN_EXPORT RequestHostAuthSvc : public BaseHostingService {
 public:
  // Creates the service around `handler` (not owned). Precondition: `handler`
  // is not null and outlives the service.
  explicit RequestHostAuthSvc(IHandleRequestHostAuthSvc* handler);
  RequestHostAuthSvc(const RequestHostAuthSvc& other);
  RequestHostAuthSvc& operator=(const RequestHostAuthSvc& other);
  ~RequestHostAuthSvc() override;

 protected:
  // Checks the request `payload` and hands a login request to the handler;
  // returns as soon as the handler returns. Throws std::invalid_argument,
  // checked in this order: "Bad payload data" (not a request), "CacheId is
  // missing", "ReplyServiceDescriptor is missing", "ReplyServiceDescriptor is
  // incorrect" (not a descriptor object). Nothing is kept when it throws. An
  // exception from the handler passes through; the context then stays with
  // the handler, which may already have answered it.
  void DoInvokeEvent(Interop::IHostControlInstance* instance,
                     Interop::IHostServiceDescriptor* descriptor, std::string payload) override;

  // Sends the outcome of the login whose context is `context`: sets
  // "IsAuthenticated" to `isAuthenticated`, copies `error` into "Exception"
  // when it carries a failure, and raises the reply service's event with the
  // message's JSON text on the stored control instance. Frees the descriptor,
  // the response message and the context on every path. Never throws: a
  // failure while sending (also a script failure, or a context without
  // control instance) writes the line "RequestHostAuthSvc::ReplyCallback -
  // Error sending async reply". A null `context` does nothing.
  //
  // Any thread may call it, once per context; the context must not be used
  // afterwards.
  static void ReplyCallback(void* context, bool isAuthenticated,
                            const Interop::ExceptionInfo& error);

 private:
  IHandleRequestHostAuthSvc* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHSVC_H_
