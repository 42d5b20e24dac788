#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_SOAJSONREQUESTMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_SOAJSONREQUESTMSG_H_

#include <string>

#include "wevlin/infrastructure/services/soa/_2014_02/AsyncIncomingMessageData.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// A request from the page for a server-side operation, relayed to the
// application by AsyncSoaJsonMessageSvc: the reply routing of
// AsyncIncomingMessageData followed by the server-side service name, the
// operation name and the request body, e.g.
// {"Version": "_2014_02", "CacheId": "7", "ReplyServiceDescriptor": "...",
//  "ServiceName": "Orders", "OperationName": "List", "Message": "{}"}.
//
// The "Version" the page sends decides the shape of the answer (see
// AsyncSoaJsonMessageSvc). A value type; copies register their own fields.
// The class is final because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT SoaJsonRequestMsg final : public AsyncIncomingMessageData {
 public:
  // Creates a request of version "_2014_02" with every text empty.
  SoaJsonRequestMsg();
  SoaJsonRequestMsg(const SoaJsonRequestMsg& other);
  SoaJsonRequestMsg& operator=(const SoaJsonRequestMsg& other);
  ~SoaJsonRequestMsg();

  std::string ServiceName;    // JSON key "ServiceName"
  std::string OperationName;  // JSON key "OperationName"
  std::string Message;        // JSON key "Message"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_SOAJSONREQUESTMSG_H_
