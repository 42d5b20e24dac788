#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02 {

InteropObjRef::InteropObjRef() { RegisterFields(); }

InteropObjRef::InteropObjRef(const std::string& dbId, const std::string& objId,
                             const std::string& objType)
    : DBId(dbId), ObjId(objId), ObjType(objType) {
  RegisterFields();
}

InteropObjRef::InteropObjRef(const InteropObjRef& other)
    : DataContract(other), DBId(other.DBId), ObjId(other.ObjId), ObjType(other.ObjType) {
  RegisterFields();
}

InteropObjRef& InteropObjRef::operator=(const InteropObjRef& other) {
  // The values are copied directly; copying through the JSON text, as the
  // contract base would, gives the same result at a higher cost.
  if (this != &other) {
    DBId = other.DBId;
    ObjId = other.ObjId;
    ObjType = other.ObjType;
  }
  return *this;
}

InteropObjRef::~InteropObjRef() = default;

void InteropObjRef::RegisterFields() {
  RegisterField("DBId", DBId);
  RegisterField("ObjId", ObjId);
  RegisterField("ObjType", ObjType);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02
