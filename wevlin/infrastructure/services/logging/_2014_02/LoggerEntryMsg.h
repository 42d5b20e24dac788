#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_LOGGING_2014_02_LOGGERENTRYMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_LOGGING_2014_02_LOGGERENTRYMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02 {

// One log entry that the page sends to the host's log through
// LoggerForwardSvc: {"Version": "_2014_02", "FormatMessage": "text",
// "Level": "warn"}. The level is whatever text the page chose; the library
// passes it through unchanged. Both texts are empty by default.
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT LoggerEntryMsg final : public BaseMessage {
 public:
  LoggerEntryMsg();
  LoggerEntryMsg(const LoggerEntryMsg& other);
  LoggerEntryMsg& operator=(const LoggerEntryMsg& other);
  ~LoggerEntryMsg();

  std::string FormatMessage;  // JSON key "FormatMessage"
  std::string Level;          // JSON key "Level"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_LOGGING_2014_02_LOGGERENTRYMSG_H_
