#include "wevlin/infrastructure/services/core/_2014_07/InteropObjWithProperties.h"

#include "wevlin/infrastructure/services/internal/RecordList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

InteropObjWithProperties::InteropObjWithProperties() { RegisterFields(); }

InteropObjWithProperties::InteropObjWithProperties(const InteropObjWithProperties& other)
    : DataContract(other), ObjRef(other.ObjRef), Properties(other.Properties) {
  RegisterFields();
}

InteropObjWithProperties& InteropObjWithProperties::operator=(
    const InteropObjWithProperties& other) {
  // Copied directly: going through the JSON text, as the contract base does,
  // would append the properties to those already held.
  if (this != &other) {
    ObjRef = other.ObjRef;
    Properties = other.Properties;
  }
  return *this;
}

InteropObjWithProperties::~InteropObjWithProperties() = default;

void InteropObjWithProperties::RegisterFields() {
  RegisterField("ObjRef", ObjRef);
  RegisterCollection("Properties", &Properties, &internal::ReadRecordInto<StringArrayProperty>,
                     &internal::WriteRecords<StringArrayProperty>);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07
