#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/internal/RecordList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02 {

using Core::_2014_02::InteropObjRef;

OpenLocationMsg::OpenLocationMsg() : BaseMessage(ServiceVersions::k2014_02) { RegisterFields(); }

OpenLocationMsg::OpenLocationMsg(const OpenLocationMsg& other)
    : BaseMessage(other), location(other.location), OpenComponent(other.OpenComponent) {
  RegisterFields();
}

OpenLocationMsg& OpenLocationMsg::operator=(const OpenLocationMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    location = other.location;
    OpenComponent = other.OpenComponent;
  }
  return *this;
}

OpenLocationMsg::~OpenLocationMsg() = default;

void OpenLocationMsg::RegisterFields() {
  RegisterField("location", location);
  RegisterCollection("OpenComponent", &OpenComponent, &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02
