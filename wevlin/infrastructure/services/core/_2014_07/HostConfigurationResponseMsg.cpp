#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/internal/RecordList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

HostConfigurationResponseMsg::HostConfigurationResponseMsg()
    : BaseMessage(ServiceVersions::k2014_07) {
  RegisterFields();
}

HostConfigurationResponseMsg::HostConfigurationResponseMsg(
    const HostConfigurationResponseMsg& other)
    : BaseMessage(other), Settings(other.Settings) {
  RegisterFields();
}

HostConfigurationResponseMsg& HostConfigurationResponseMsg::operator=(
    const HostConfigurationResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    Settings = other.Settings;
  }
  return *this;
}

HostConfigurationResponseMsg::~HostConfigurationResponseMsg() = default;

void HostConfigurationResponseMsg::RegisterFields() {
  RegisterCollection("Settings", &Settings, &internal::ReadRecordInto<Pair>,
                     &internal::WriteRecords<Pair>);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
