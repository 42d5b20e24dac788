#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONINPUTMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONINPUTMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

// Request of the version test, version "_2014_02": the name and interface
// version of the service that the caller means to reach,
// {"Version": "_2014_02", "ServiceName": "...", "ServiceVersion": "..."}.
// Both texts are empty by default.
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

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONINPUTMSG_H_
