#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_STRINGARRAYPROPERTY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_STRINGARRAYPROPERTY_H_

#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// One named property with several string values:
// {"Name": "colour", "Values": ["red", "blue"]}. It travels inside versioned
// messages and has no "Version" of its own. Reading appends to Values.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT StringArrayProperty final : public Interop::DataContract {
 public:
  // Creates a property with an empty name and no values.
  StringArrayProperty();
  // Creates the property `name` with `values`.
  StringArrayProperty(const std::string& name, const std::vector<std::string>& values);
  // Registers the fields of the new object, then copies the name and values.
  StringArrayProperty(const StringArrayProperty& other);
  // Copies the name and the values.
  StringArrayProperty& operator=(const StringArrayProperty& other);
  ~StringArrayProperty();

  std::string Name;                 // JSON key "Name"
  std::vector<std::string> Values;  // JSON key "Values", in order

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_STRINGARRAYPROPERTY_H_
