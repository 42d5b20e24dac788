#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

SoaJsonResponseMsg::SoaJsonResponseMsg() : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

SoaJsonResponseMsg::SoaJsonResponseMsg(const std::string& version) : BaseMessage(version) {
  RegisterFields();
}

SoaJsonResponseMsg::SoaJsonResponseMsg(const SoaJsonResponseMsg& other)
    : BaseMessage(other),
      CacheId(other.CacheId),
      SoaResponse(other.SoaResponse),
      Exception(other.Exception) {
  RegisterFields();
}

SoaJsonResponseMsg& SoaJsonResponseMsg::operator=(const SoaJsonResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    CacheId = other.CacheId;
    SoaResponse = other.SoaResponse;
    Exception = other.Exception;
  }
  return *this;
}

SoaJsonResponseMsg::~SoaJsonResponseMsg() = default;

void SoaJsonResponseMsg::RegisterFields() {
  RegisterField("CacheId", CacheId);
  RegisterField("SoaResponse", SoaResponse);
  RegisterField("Exception", Exception);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
