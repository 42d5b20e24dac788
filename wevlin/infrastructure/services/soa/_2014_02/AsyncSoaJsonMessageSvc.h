#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCSOAJSONMESSAGESVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCSOAJSONMESSAGESVC_H_

#include <string>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleAsyncSoaJsonServiceRequest.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// Host service "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host",
// version "_2014_02": relays the page's server-side (SOA) requests to the
// application and sends each answer back later, as an event to the page
// service that the request names.
//
// The page raises an event whose payload is a SoaJsonRequestMsg. The service
// checks it, keeps where the answer goes in a record on the heap and calls the
// handler with the service name, operation name, request body, the record as
// opaque context and ExternalFacingCallback. When the application calls the
// callback, the answer goes to the page in the shape the request's "Version"
// asks for:
//   "_2015_10":  {"CacheId":"7","SoaResponse":<answer as raw JSON>,"Version":"_2015_10"}
//   "_2014_02":  a SoaJsonResponseMsg of "_2014_02", the answer Base64-embedded;
//   any other:   the same with "_2014_07".
// A failure reported through the callback is always sent as a
// SoaJsonResponseMsg in the request's own version, with the record under
// "Exception".
//
// Ownership: the service holds its handler by plain pointer and never deletes
// it; whoever registers the service owns it. Threading: events arrive on the
// thread that drives the browser control; the callback may be called from any
// thread (see ExternalFacingCallback).
class WEVLIN_EXPORT AsyncSoaJsonMessageSvc : public BaseHostingService {
 public:
  // Creates the service around `handler` (not owned). Precondition: `handler`
  // is not null and outlives the service.
  explicit AsyncSoaJsonMessageSvc(IHandleAsyncSoaJsonServiceRequest* handler);
  AsyncSoaJsonMessageSvc(const AsyncSoaJsonMessageSvc& other);
  AsyncSoaJsonMessageSvc& operator=(const AsyncSoaJsonMessageSvc& other);
  ~AsyncSoaJsonMessageSvc() override;

 protected:
  // Checks the request `payload` and hands it to the handler; returns as soon
  // as the handler returns. Throws std::invalid_argument, checked in this
  // order: "Bad payload data" (not a request), "CacheId is missing",
  // "ReplyServiceDescriptor is missing", "ReplyServiceDescriptor is incorrect"
  // (not a descriptor object). Nothing is kept when it throws. An exception
  // from the handler passes through; the record then stays with the handler,
  // which may already have answered it.
  void DoInvokeEvent(Interop::IHostControlInstance* instance,
                     Interop::IHostServiceDescriptor* descriptor, std::string payload) override;

  // Answers the request whose record is `context`: builds the reply from
  // `soaResponse` or, when `error` carries a failure, from `error`, sends it
  // with InvokeWebEvent on the instance the request came through, and deletes
  // the record, on every path. Never throws: a failure while answering (also
  // a script failure, or a record without control instance) writes the line
  // "Services::AsyncSoaJsonMessageSvc::ExternalFacingCallback - Error sending
  // async reply". A null `context` does nothing.
  //
  // For a "_2015_10" request the answer is expected as a JSON string whose
  // content is JSON ("\"{\"a\": 1}\""); the reply carries that content
  // unquoted: the first character and everything from the last double quote
  // on are dropped (with no double quote, everything from the second
  // character on is kept). The cache identifier is inserted as it stands.
  // When nothing is left to embed (an empty answer, a lone quote, or one
  // character), "SoaResponse" is written null so that the reply stays JSON.
  //
  // Any thread may call it, once per record; the record must not be used
  // afterwards.
  static void ExternalFacingCallback(void* context, std::string soaResponse,
                                     const Interop::ExceptionInfo& error);

 private:
  IHandleAsyncSoaJsonServiceRequest* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCSOAJSONMESSAGESVC_H_
