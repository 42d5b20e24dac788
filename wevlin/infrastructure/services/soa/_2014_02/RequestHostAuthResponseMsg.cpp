#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

RequestHostAuthResponseMsg::RequestHostAuthResponseMsg() : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

RequestHostAuthResponseMsg::RequestHostAuthResponseMsg(const RequestHostAuthResponseMsg& other)
    : BaseMessage(other),
      CacheId(other.CacheId),
      IsAuthenticated(other.IsAuthenticated),
      Exception(other.Exception) {
  RegisterFields();
}

RequestHostAuthResponseMsg& RequestHostAuthResponseMsg::operator=(
    const RequestHostAuthResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    CacheId = other.CacheId;
    IsAuthenticated = other.IsAuthenticated;
    Exception = other.Exception;
  }
  return *this;
}

RequestHostAuthResponseMsg::~RequestHostAuthResponseMsg() = default;

void RequestHostAuthResponseMsg::RegisterFields() {
  RegisterField("CacheId", CacheId);
  RegisterField("IsAuthenticated", IsAuthenticated);
  RegisterField("Exception", Exception);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
