#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHRESPONSEMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHRESPONSEMSG_H_

#include <string>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The outcome of a host login that RequestHostAuthSvc sends to the page:
// {"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true,
//  "Exception": null}
// ("Exception" holds {"name": "...", "message": "..."} when the login failed
// with an error; an empty record writes null).
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT RequestHostAuthResponseMsg final : public BaseMessage {
 public:
  // Creates the outcome "not authenticated, no error, no cache identifier" of
  // version "_2014_02".
  RequestHostAuthResponseMsg();
  RequestHostAuthResponseMsg(const RequestHostAuthResponseMsg& other);
  RequestHostAuthResponseMsg& operator=(const RequestHostAuthResponseMsg& other);
  ~RequestHostAuthResponseMsg();

  std::string CacheId;               // JSON key "CacheId"
  bool IsAuthenticated = false;      // JSON key "IsAuthenticated"
  Interop::ExceptionInfo Exception;  // JSON key "Exception"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHRESPONSEMSG_H_
