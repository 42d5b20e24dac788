#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_INTEROPOBJREF_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_INTEROPOBJREF_H_

#include <string>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02 {

// A reference to one object in a database, as the session, refresh and
// open-location messages carry it instead of the object itself:
// {"DBId": "...", "ObjId": "...", "ObjType": "..."}. All three texts are empty
// by default. It has no "Version" of its own: the message that holds it
// covers it.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT InteropObjRef final : public Interop::DataContract {
 public:
  // Creates a reference whose three texts are empty.
  InteropObjRef();
  // Creates the reference to object `objId` of type `objType` in `dbId`.
  InteropObjRef(const std::string& dbId, const std::string& objId, const std::string& objType);
  // Registers the fields of the new object, then copies the three texts.
  InteropObjRef(const InteropObjRef& other);
  // Copies the three texts.
  InteropObjRef& operator=(const InteropObjRef& other);
  ~InteropObjRef();

  std::string DBId;     // JSON key "DBId": the database or source that holds the object
  std::string ObjId;    // JSON key "ObjId": the object within it
  std::string ObjType;  // JSON key "ObjType": the type name of the object

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_INTEROPOBJREF_H_
