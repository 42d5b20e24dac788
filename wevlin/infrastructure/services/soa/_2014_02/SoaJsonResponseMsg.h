#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_SOAJSONRESPONSEMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_SOAJSONRESPONSEMSG_H_

#include <string>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The answer to a SoaJsonRequestMsg, sent to the page's reply service as an
// event: the request's cache identifier, the answer embedded as Base64 text
// and the failure record, e.g.
// {"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=",
//  "Exception": null}
// for a success (an empty failure record writes null), or with an empty
// "SoaResponse" and {"name": "...", "message": "..."} under "Exception" for a
// failure.
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT SoaJsonResponseMsg final : public BaseMessage {
 public:
  // Creates an empty answer of version "_2014_02".
  SoaJsonResponseMsg();
  // Creates an empty answer of version `version`, e.g. "_2014_07".
  explicit SoaJsonResponseMsg(const std::string& version);
  SoaJsonResponseMsg(const SoaJsonResponseMsg& other);
  SoaJsonResponseMsg& operator=(const SoaJsonResponseMsg& other);
  ~SoaJsonResponseMsg();

  std::string CacheId;               // JSON key "CacheId"
  std::string SoaResponse;           // JSON key "SoaResponse"
  Interop::ExceptionInfo Exception;  // JSON key "Exception"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_SOAJSONRESPONSEMSG_H_
