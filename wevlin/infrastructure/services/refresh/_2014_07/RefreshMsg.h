#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHMSG_H_

#include <vector>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/InteropObjWithProperties.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {

// Which objects have changed, sent both ways: by the page to the host through
// RefreshSvc and by the host to the page through RefreshProxy. Written as
// {"Version": "_2014_07", "CreatedObjects": [...], "UpdatedObjects": [...],
// "DeletedObjects": [...], "PlainObjects": [...], "ChildChangeObjects": [...],
// "DataObjects": [...]}: five lists of object references and one of
// references with properties, all empty by default and always written. On
// reading, elements that do not parse are skipped and the others keep their
// order; reading appends.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT RefreshMsg final : public BaseMessage {
 public:
  // Creates a message of version "_2014_07" with all six lists empty.
  RefreshMsg();
  // Registers the fields of the new object, then copies the version and the
  // six lists.
  RefreshMsg(const RefreshMsg& other);
  // Copies the version and the six lists.
  RefreshMsg& operator=(const RefreshMsg& other);
  ~RefreshMsg();

  std::vector<Core::_2014_02::InteropObjRef> CreatedObjects;          // "CreatedObjects"
  std::vector<Core::_2014_02::InteropObjRef> UpdatedObjects;          // "UpdatedObjects"
  std::vector<Core::_2014_02::InteropObjRef> DeletedObjects;          // "DeletedObjects"
  std::vector<Core::_2014_02::InteropObjRef> PlainObjects;            // "PlainObjects"
  std::vector<Core::_2014_02::InteropObjRef> ChildChangeObjects;      // "ChildChangeObjects"
  std::vector<Core::_2014_07::InteropObjWithProperties> DataObjects;  // "DataObjects"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_REFRESHMSG_H_
