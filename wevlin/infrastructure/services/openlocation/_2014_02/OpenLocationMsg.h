#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_OPENLOCATION_2014_02_OPENLOCATIONMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_OPENLOCATION_2014_02_OPENLOCATIONMSG_H_

#include <string>
#include <vector>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02 {

// Asks the page to open a location, optionally with the objects to show
// there: {"Version": "_2014_02", "location": "...", "OpenComponent": [...]}.
// Note the lower-case key "location", unlike every other key of the
// protocol; the page reads it that way. On reading, elements of
// "OpenComponent" that do not parse are skipped and the others keep their
// order; reading appends.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT OpenLocationMsg final : public BaseMessage {
 public:
  // Creates a message of version "_2014_02" with an empty location and no
  // objects.
  OpenLocationMsg();
  // Registers the fields of the new object, then copies the version, the
  // location and the objects.
  OpenLocationMsg(const OpenLocationMsg& other);
  // Copies the version, the location and the objects.
  OpenLocationMsg& operator=(const OpenLocationMsg& other);
  ~OpenLocationMsg();

  std::string location;                                      // JSON key "location"
  std::vector<Core::_2014_02::InteropObjRef> OpenComponent;  // JSON key "OpenComponent"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_OPENLOCATION_2014_02_OPENLOCATIONMSG_H_
