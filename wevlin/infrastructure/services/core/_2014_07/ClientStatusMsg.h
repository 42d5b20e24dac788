#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_CLIENTSTATUSMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_CLIENTSTATUSMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// The state that the page reports with the client status service:
// {"Version": "_2014_07", "State": "idle"}. The two states defined are "idle"
// (the default) and "busy"; other texts are carried as they are.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT ClientStatusMsg final : public BaseMessage {
 public:
  // Creates a message of version "_2014_07" in state "idle".
  ClientStatusMsg();
  // Registers the fields of the new object, then copies the version and the
  // state.
  ClientStatusMsg(const ClientStatusMsg& other);
  // Copies the version and the state.
  ClientStatusMsg& operator=(const ClientStatusMsg& other);
  ~ClientStatusMsg();

  std::string State = "idle";  // JSON key "State": "idle" or "busy"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_CLIENTSTATUSMSG_H_
