#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_SESSIONMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_SESSIONMSG_H_

#include <vector>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07 {

// The user's session, sent both ways: by the page to the host through
// SessionSvc and by the host to the page through SessionProxy.
// {"Version": "_2014_07", "SessionObjects": [...], "Preferences": [...]}:
// the objects of the session as references and the user's preferences as
// named value lists, both empty by default. On reading, elements that do not
// parse are skipped and the others keep their order; reading appends.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT SessionMsg final : public BaseMessage {
 public:
  // Creates a message of version "_2014_07" with both lists empty.
  SessionMsg();
  // Registers the fields of the new object, then copies the version and both
  // lists.
  SessionMsg(const SessionMsg& other);
  // Copies the version and both lists.
  SessionMsg& operator=(const SessionMsg& other);
  ~SessionMsg();

  std::vector<Core::_2014_02::InteropObjRef> SessionObjects;     // JSON key "SessionObjects"
  std::vector<Core::_2014_07::StringArrayProperty> Preferences;  // JSON key "Preferences"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_SESSIONMSG_H_
