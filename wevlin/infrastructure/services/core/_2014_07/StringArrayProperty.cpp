#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

StringArrayProperty::StringArrayProperty() { RegisterFields(); }

StringArrayProperty::StringArrayProperty(const std::string& name,
                                         const std::vector<std::string>& values)
    : Name(name), Values(values) {
  RegisterFields();
}

StringArrayProperty::StringArrayProperty(const StringArrayProperty& other)
    : DataContract(other), Name(other.Name), Values(other.Values) {
  RegisterFields();
}

StringArrayProperty& StringArrayProperty::operator=(const StringArrayProperty& other) {
  // Copied directly: going through the JSON text, as the contract base does,
  // would append the values to those already held.
  if (this != &other) {
    Name = other.Name;
    Values = other.Values;
  }
  return *this;
}

StringArrayProperty::~StringArrayProperty() = default;

void StringArrayProperty::RegisterFields() {
  RegisterField("Name", Name);
  RegisterField("Values", Values);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
