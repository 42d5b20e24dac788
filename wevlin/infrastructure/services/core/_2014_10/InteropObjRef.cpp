#include "wevlin/infrastructure/services/core/_2014_10/InteropObjRef.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_10 {

InteropObjRef::InteropObjRef() { RegisterFields(); }

InteropObjRef::InteropObjRef(const std::string& type, const std::string& data)
    : Type(type), Data(data) {
  RegisterFields();
}

InteropObjRef::InteropObjRef(const InteropObjRef& other)
    : DataContract(other), Type(other.Type), Data(other.Data) {
  RegisterFields();
}

InteropObjRef& InteropObjRef::operator=(const InteropObjRef& other) {
  // The values are copied directly; copying through the JSON text, as the
  // contract base would, gives the same result at a higher cost.
  if (this != &other) {
    Type = other.Type;
    Data = other.Data;
  }
  return *this;
}

InteropObjRef::~InteropObjRef() = default;

std::string InteropObjRef::UID_TYPE() { return "UID"; }

std::string InteropObjRef::OCCURRENCE_TYPE() { return "Occurrence"; }

std::string InteropObjRef::OCCURRENCE2_TYPE() { return "Occurrence2"; }

void InteropObjRef::RegisterFields() {
  RegisterField("Type", Type);
  RegisterField("Data", Data);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_10
