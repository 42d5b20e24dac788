#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/internal/RecordList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {

using Core::_2014_02::InteropObjRef;
using Core::_2014_07::InteropObjWithProperties;

RefreshMsg::RefreshMsg() : BaseMessage(ServiceVersions::k2014_07) { RegisterFields(); }

RefreshMsg::RefreshMsg(const RefreshMsg& other)
    : BaseMessage(other),
      CreatedObjects(other.CreatedObjects),
      UpdatedObjects(other.UpdatedObjects),
      DeletedObjects(other.DeletedObjects),
      PlainObjects(other.PlainObjects),
      ChildChangeObjects(other.ChildChangeObjects),
      DataObjects(other.DataObjects) {
  RegisterFields();
}

RefreshMsg& RefreshMsg::operator=(const RefreshMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    CreatedObjects = other.CreatedObjects;
    UpdatedObjects = other.UpdatedObjects;
    DeletedObjects = other.DeletedObjects;
    PlainObjects = other.PlainObjects;
    ChildChangeObjects = other.ChildChangeObjects;
    DataObjects = other.DataObjects;
  }
  return *this;
}

RefreshMsg::~RefreshMsg() = default;

void RefreshMsg::RegisterFields() {
  RegisterCollection("CreatedObjects", &CreatedObjects, &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
  RegisterCollection("UpdatedObjects", &UpdatedObjects, &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
  RegisterCollection("DeletedObjects", &DeletedObjects, &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
  RegisterCollection("PlainObjects", &PlainObjects, &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
  RegisterCollection("ChildChangeObjects", &ChildChangeObjects,
                     &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
  RegisterCollection("DataObjects", &DataObjects,
                     &internal::ReadRecordInto<InteropObjWithProperties>,
                     &internal::WriteRecords<InteropObjWithProperties>);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07
