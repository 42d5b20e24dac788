#include "wevlin/infrastructure/services/core/_2014_07/BaseKeyValueMessage.h"

#include "wevlin/infrastructure/services/internal/RecordList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

BaseKeyValueMessage::BaseKeyValueMessage() : BaseMessage("_2014_07") { RegisterFields(); }

BaseKeyValueMessage::BaseKeyValueMessage(const BaseKeyValueMessage& other)
    : BaseMessage(other), Data(other.Data) {
  RegisterFields();
}

BaseKeyValueMessage& BaseKeyValueMessage::operator=(const BaseKeyValueMessage& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    Data = other.Data;
  }
  return *this;
}

BaseKeyValueMessage::~BaseKeyValueMessage() = default;

void BaseKeyValueMessage::RegisterFields() {
  RegisterCollection("Data", &Data, &internal::ReadRecordInto<Pair>, &internal::WriteRecords<Pair>);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
