#include "wevlin/infrastructure/services/logging/_2014_02/LoggerEntryMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02 {

LoggerEntryMsg::LoggerEntryMsg() : BaseMessage(ServiceVersions::k2014_02) { RegisterFields(); }

LoggerEntryMsg::LoggerEntryMsg(const LoggerEntryMsg& other)
    : BaseMessage(other), FormatMessage(other.FormatMessage), Level(other.Level) {
  RegisterFields();
}

LoggerEntryMsg& LoggerEntryMsg::operator=(const LoggerEntryMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    FormatMessage = other.FormatMessage;
    Level = other.Level;
  }
  return *this;
}

LoggerEntryMsg::~LoggerEntryMsg() = default;

void LoggerEntryMsg::RegisterFields() {
  RegisterField("FormatMessage", FormatMessage);
  RegisterField("Level", Level);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02
