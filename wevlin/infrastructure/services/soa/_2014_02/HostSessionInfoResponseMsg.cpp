#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

HostSessionInfoResponseMsg::HostSessionInfoResponseMsg() : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

HostSessionInfoResponseMsg::HostSessionInfoResponseMsg(const HostSessionInfoResponseMsg& other)
    : BaseMessage(other), IsSessionActive(other.IsSessionActive), UserName(other.UserName) {
  RegisterFields();
}

HostSessionInfoResponseMsg& HostSessionInfoResponseMsg::operator=(
    const HostSessionInfoResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    IsSessionActive = other.IsSessionActive;
    UserName = other.UserName;
  }
  return *this;
}

HostSessionInfoResponseMsg::~HostSessionInfoResponseMsg() = default;

void HostSessionInfoResponseMsg::RegisterFields() {
  RegisterField("IsSessionActive", IsSessionActive);
  RegisterField("UserName", UserName);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
