#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONRESPONSEMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONRESPONSEMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

// Answer of the version test, version "_2014_03": the name and interface
// version of the service that actually answered, and whether it accepted the
// request,
// {"Version": "_2014_03", "ServiceName": "...", "ServiceVersion": "...",
//  "Result": true}.
// The texts are empty by default. Result starts false: it means something
// only once the service has set it or an answer has been read.
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT TestVersionResponseMsg final : public BaseMessage {
 public:
  TestVersionResponseMsg();
  TestVersionResponseMsg(const TestVersionResponseMsg& other);
  TestVersionResponseMsg& operator=(const TestVersionResponseMsg& other);
  ~TestVersionResponseMsg();

  std::string ServiceName;     // JSON key "ServiceName"
  std::string ServiceVersion;  // JSON key "ServiceVersion"
  bool Result = false;         // JSON key "Result"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONRESPONSEMSG_H_
