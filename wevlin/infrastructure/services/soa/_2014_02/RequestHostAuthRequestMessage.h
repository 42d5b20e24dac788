#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHREQUESTMESSAGE_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHREQUESTMESSAGE_H_

#include "wevlin/infrastructure/services/soa/_2014_02/AsyncIncomingMessageData.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The page's request that the host log the user in (RequestHostAuthSvc): only
// where the outcome goes, {"Version": "_2014_02", "CacheId": "7",
// "ReplyServiceDescriptor": "{\"FQN\": \"...\", \"SvcVersion\": \"...\"}"}.
//
// A value type; copies register their own fields. The class is final
// because its destructor is not virtual. Not thread-safe.
class WEVLIN_EXPORT RequestHostAuthRequestMessage final : public AsyncIncomingMessageData {
 public:
  // Creates a request of version "_2014_02" with both texts empty.
  RequestHostAuthRequestMessage();
  RequestHostAuthRequestMessage(const RequestHostAuthRequestMessage& other);
  RequestHostAuthRequestMessage& operator=(const RequestHostAuthRequestMessage& other);
  ~RequestHostAuthRequestMessage();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_REQUESTHOSTAUTHREQUESTMESSAGE_H_
