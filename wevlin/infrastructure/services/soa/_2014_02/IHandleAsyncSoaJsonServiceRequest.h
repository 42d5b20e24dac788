#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEASYNCSOAJSONSERVICEREQUEST_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEASYNCSOAJSONSERVICEREQUEST_H_

#include <string>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The callback through which the application answers one relayed request:
// `context` is the pointer it was handed with the request, `soaResponse` the
// answer text, and `error` the failure record (empty, i.e. both texts empty,
// when the call succeeded). Callable from any thread, exactly once per
// request.
using SoaResponseCallback = void (*)(void* context, std::string soaResponse,
                                     const Interop::ExceptionInfo& error);

// Implemented by the application to carry out the server-side (SOA) requests
// that the page relays through AsyncSoaJsonMessageSvc.
//
// The service holds the handler by plain pointer and never deletes it; the
// handler must outlive the service.
class WEVLIN_EXPORT IHandleAsyncSoaJsonServiceRequest {
 public:
  IHandleAsyncSoaJsonServiceRequest() = default;
  IHandleAsyncSoaJsonServiceRequest(const IHandleAsyncSoaJsonServiceRequest&) = default;
  IHandleAsyncSoaJsonServiceRequest& operator=(const IHandleAsyncSoaJsonServiceRequest&) = default;

  // Starts the operation `operationName` of the server-side service
  // `serviceName` with the request body `message` (all three as the page
  // sent them). Called on the thread that delivered the page's event; should
  // return promptly and finish the work elsewhere.
  //
  // The handler must eventually call `callback(context, answer, error)`
  // exactly once, from any thread: with the answer text and an empty record on
  // success, or with a record that names the failure. The callback sends the
  // answer to the page and frees `context`; until then `context` is the
  // handler's to keep and must not be touched afterwards. If the callback is
  // never called, the request's record is leaked. The control instance that
  // delivered the request must still exist when the callback runs.
  virtual void OnSoaJsonRequest(std::string serviceName, std::string operationName,
                                std::string message, void* context,
                                SoaResponseCallback callback) = 0;

 protected:
  // Not virtual: the library never destroys a handler.
  ~IHandleAsyncSoaJsonServiceRequest() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_IHANDLEASYNCSOAJSONSERVICEREQUEST_H_
