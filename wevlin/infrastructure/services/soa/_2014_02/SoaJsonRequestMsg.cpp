#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

SoaJsonRequestMsg::SoaJsonRequestMsg() { RegisterFields(); }

SoaJsonRequestMsg::SoaJsonRequestMsg(const SoaJsonRequestMsg& other)
    : AsyncIncomingMessageData(other),
      ServiceName(other.ServiceName),
      OperationName(other.OperationName),
      Message(other.Message) {
  RegisterFields();
}

SoaJsonRequestMsg& SoaJsonRequestMsg::operator=(const SoaJsonRequestMsg& other) {
  if (this != &other) {
    AsyncIncomingMessageData::operator=(other);
    ServiceName = other.ServiceName;
    OperationName = other.OperationName;
    Message = other.Message;
  }
  return *this;
}

SoaJsonRequestMsg::~SoaJsonRequestMsg() = default;

void SoaJsonRequestMsg::RegisterFields() {
  RegisterField("ServiceName", ServiceName);
  RegisterField("OperationName", OperationName);
  RegisterField("Message", Message);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
