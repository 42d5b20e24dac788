#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCSOAPENDINGCALL_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCSOAPENDINGCALL_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncIncomingMessageData.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// Everything AsyncSoaJsonMessageSvc needs to answer one relayed request once
// the application has the answer: the reply target, the cache identifier
// (CacheId, with ReplyServiceDescriptor holding the target's text as the page
// sent it), the calling control instance, whether the request was of version
// "_2014_02", and a copy of the request itself.
//
// The service creates one on the heap per request and hands it to the
// application as the opaque context of the answer callback, which deletes it.
// The record owns its reply descriptor (deleted with the record; copies get a
// descriptor of their own) and does not own the control instance.
//
// The class is final because its destructor is not virtual. Not
// thread-safe, but it may move between threads: it is created on the thread
// of the request and consumed on whichever thread answers.
class WEVLIN_EXPORT AsyncSoaPendingCall final : public AsyncIncomingMessageData {
 public:
  // Creates the record of `request`, received through `instance` (not owned,
  // may be null), to be answered to `replyDescriptor`, which the record takes
  // over. CacheId and ReplyServiceDescriptor are copied from the request, and
  // the request is kept as a copy. Precondition: `replyDescriptor` is not null
  // and was allocated with new.
  AsyncSoaPendingCall(Interop::WebSideServiceDescriptor* replyDescriptor,
                      Interop::IHostControlInstance* instance, const SoaJsonRequestMsg& request);
  AsyncSoaPendingCall(const AsyncSoaPendingCall& other);
  AsyncSoaPendingCall& operator=(const AsyncSoaPendingCall& other);
  // Deletes the reply descriptor.
  ~AsyncSoaPendingCall();

  // Returns the descriptor of the page service that receives the answer,
  // still owned by the record.
  Interop::WebSideServiceDescriptor* GetReplyDescriptor() const;
  // Returns the control instance the request came through (not owned).
  Interop::IHostControlInstance* GetHostControlInstance() const;
  // Returns true when the request's "Version" was exactly "_2014_02".
  bool RequestWasVersion2014_02() const;
  // Returns the copy of the request, with the "Version" the page sent.
  const SoaJsonRequestMsg& GetRequest() const;

 private:
  Interop::WebSideServiceDescriptor* replyDescriptor_;
  Interop::IHostControlInstance* instance_;
  bool requestWasVersion2014_02_;
  SoaJsonRequestMsg request_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCSOAPENDINGCALL_H_
