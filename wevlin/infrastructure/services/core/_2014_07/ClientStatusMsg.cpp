#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

ClientStatusMsg::ClientStatusMsg() : BaseMessage(ServiceVersions::k2014_07) { RegisterFields(); }

ClientStatusMsg::ClientStatusMsg(const ClientStatusMsg& other)
    : BaseMessage(other), State(other.State) {
  RegisterFields();
}

ClientStatusMsg& ClientStatusMsg::operator=(const ClientStatusMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    State = other.State;
  }
  return *this;
}

ClientStatusMsg::~ClientStatusMsg() = default;

void ClientStatusMsg::RegisterFields() { RegisterField("State", State); }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
