#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaPendingCall.h"

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {
namespace {

Interop::WebSideServiceDescriptor* CopyDescriptor(const Interop::WebSideServiceDescriptor* source) {
  Interop::DataServiceDescriptor data(source->GetFQN(), source->GetSvcVersion());
  return new Interop::WebSideServiceDescriptor(&data);
}

}  // namespace

AsyncSoaPendingCall::AsyncSoaPendingCall(Interop::WebSideServiceDescriptor* replyDescriptor,
                                         Interop::IHostControlInstance* instance,
                                         const SoaJsonRequestMsg& request)
    : replyDescriptor_(replyDescriptor),
      instance_(instance),
      requestWasVersion2014_02_(request.GetVersion() == ServiceVersions::k2014_02),
      request_(request) {
  CacheId = request.CacheId;
  ReplyServiceDescriptor = request.ReplyServiceDescriptor;
}

AsyncSoaPendingCall::AsyncSoaPendingCall(const AsyncSoaPendingCall& other)
    : AsyncIncomingMessageData(other),
      replyDescriptor_(CopyDescriptor(other.replyDescriptor_)),
      instance_(other.instance_),
      requestWasVersion2014_02_(other.requestWasVersion2014_02_),
      request_(other.request_) {}

AsyncSoaPendingCall& AsyncSoaPendingCall::operator=(const AsyncSoaPendingCall& other) {
  if (this != &other) {
    Interop::WebSideServiceDescriptor* copy = CopyDescriptor(other.replyDescriptor_);
    AsyncIncomingMessageData::operator=(other);
    delete replyDescriptor_;
    replyDescriptor_ = copy;
    instance_ = other.instance_;
    requestWasVersion2014_02_ = other.requestWasVersion2014_02_;
    request_ = other.request_;
  }
  return *this;
}

AsyncSoaPendingCall::~AsyncSoaPendingCall() { delete replyDescriptor_; }

Interop::WebSideServiceDescriptor* AsyncSoaPendingCall::GetReplyDescriptor() const {
  return replyDescriptor_;
}

Interop::IHostControlInstance* AsyncSoaPendingCall::GetHostControlInstance() const {
  return instance_;
}

bool AsyncSoaPendingCall::RequestWasVersion2014_02() const { return requestWasVersion2014_02_; }

const SoaJsonRequestMsg& AsyncSoaPendingCall::GetRequest() const { return request_; }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
