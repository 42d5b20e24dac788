#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_INTEROPOBJWITHPROPERTIES_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_INTEROPOBJWITHPROPERTIES_H_

#include <vector>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// A reference to one object together with some of its properties:
// {"ObjRef": {"DBId": "", "ObjId": "", "ObjType": ""}, "Properties": [...]}.
// "ObjRef" is written as a nested object, "Properties" as an array of
// StringArrayProperty objects. On reading, an element of "Properties" that is
// not a valid property (a number, say) is skipped and the others keep their
// order; reading appends to Properties. No "Version" of its own.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT InteropObjWithProperties final : public Interop::DataContract {
 public:
  // Creates a record with an empty reference and no properties.
  InteropObjWithProperties();
  // Registers the fields of the new object, then copies the reference and
  // the properties.
  InteropObjWithProperties(const InteropObjWithProperties& other);
  // Copies the reference and the properties.
  InteropObjWithProperties& operator=(const InteropObjWithProperties& other);
  ~InteropObjWithProperties();

  Core::_2014_02::InteropObjRef ObjRef;         // JSON key "ObjRef"
  std::vector<StringArrayProperty> Properties;  // JSON key "Properties", in order

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_INTEROPOBJWITHPROPERTIES_H_
