#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONINPUTMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONINPUTMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

// Request of the version test, version "_2014_03": the name and interface
// version of the service that the caller means to reach, and an extra text
// that must read exactly "Extra Info",
// {"Version": "_2014_03", "ServiceName": "...", "ServiceVersion": "...",
//  "ExtraInfo": "Extra Info"}. All texts are empty by default.
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT TestVersionInputMsg final : public BaseMessage {
 public:
  TestVersionInputMsg();
  TestVersionInputMsg(const TestVersionInputMsg& other);
  TestVersionInputMsg& operator=(const TestVersionInputMsg& other);
  ~TestVersionInputMsg();

  std::string ServiceName;     // JSON key "ServiceName"
  std::string ServiceVersion;  // JSON key "ServiceVersion"
  std::string ExtraInfo;       // JSON key "ExtraInfo"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONINPUTMSG_H_
