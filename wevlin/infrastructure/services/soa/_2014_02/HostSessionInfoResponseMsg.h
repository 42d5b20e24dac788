#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_HOSTSESSIONINFORESPONSEMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_HOSTSESSIONINFORESPONSEMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The host's login session as HostSessionInfoSvc tells it to the page:
// {"Version": "_2014_02", "IsSessionActive": true, "UserName": "ann"}.
// By default no session is active and the user name is empty.
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT HostSessionInfoResponseMsg final : public BaseMessage {
 public:
  // Creates the answer "no active session, no user" of version "_2014_02".
  HostSessionInfoResponseMsg();
  HostSessionInfoResponseMsg(const HostSessionInfoResponseMsg& other);
  HostSessionInfoResponseMsg& operator=(const HostSessionInfoResponseMsg& other);
  ~HostSessionInfoResponseMsg();

  bool IsSessionActive = false;  // JSON key "IsSessionActive"
  std::string UserName;          // JSON key "UserName"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_HOSTSESSIONINFORESPONSEMSG_H_
