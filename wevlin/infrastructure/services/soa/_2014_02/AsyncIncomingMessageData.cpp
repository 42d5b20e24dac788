#include "wevlin/infrastructure/services/soa/_2014_02/AsyncIncomingMessageData.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

AsyncIncomingMessageData::AsyncIncomingMessageData() : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

AsyncIncomingMessageData::AsyncIncomingMessageData(const AsyncIncomingMessageData& other)
    : BaseMessage(other),
      CacheId(other.CacheId),
      ReplyServiceDescriptor(other.ReplyServiceDescriptor) {
  RegisterFields();
}

AsyncIncomingMessageData& AsyncIncomingMessageData::operator=(
    const AsyncIncomingMessageData& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    CacheId = other.CacheId;
    ReplyServiceDescriptor = other.ReplyServiceDescriptor;
  }
  return *this;
}

AsyncIncomingMessageData::~AsyncIncomingMessageData() = default;

void AsyncIncomingMessageData::RegisterFields() {
  RegisterField("CacheId", CacheId);
  RegisterField("ReplyServiceDescriptor", ReplyServiceDescriptor);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
