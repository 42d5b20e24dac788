#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCINCOMINGMESSAGEDATA_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCINCOMINGMESSAGEDATA_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

// The part of an asynchronous request from the page that says where its
// answer goes: the page's cache identifier, returned unchanged with the
// answer, and the JSON text of the descriptor of the page service that
// receives the answer, e.g.
// {"Version": "_2014_02", "CacheId": "7",
//  "ReplyServiceDescriptor": "{\"FQN\": \"a.b.client\", \"SvcVersion\": \"_2014_02\"}"}.
//
// Base of the asynchronous request messages. A value type; copies register
// their own fields, so a copy writes exactly like the original. The destructor
// is not virtual: destroy it through its own type. Not thread-safe.
class WEVLIN_EXPORT AsyncIncomingMessageData : public BaseMessage {
 public:
  // Creates a message of version "_2014_02" with both texts empty.
  AsyncIncomingMessageData();
  AsyncIncomingMessageData(const AsyncIncomingMessageData& other);
  AsyncIncomingMessageData& operator=(const AsyncIncomingMessageData& other);
  ~AsyncIncomingMessageData();

  std::string CacheId;                 // JSON key "CacheId"
  std::string ReplyServiceDescriptor;  // JSON key "ReplyServiceDescriptor"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_ASYNCINCOMINGMESSAGEDATA_H_
