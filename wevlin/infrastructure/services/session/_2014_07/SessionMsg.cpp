#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/internal/RecordList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07 {

using Core::_2014_02::InteropObjRef;
using Core::_2014_07::StringArrayProperty;

SessionMsg::SessionMsg() : BaseMessage(ServiceVersions::k2014_07) { RegisterFields(); }

SessionMsg::SessionMsg(const SessionMsg& other)
    : BaseMessage(other), SessionObjects(other.SessionObjects), Preferences(other.Preferences) {
  RegisterFields();
}

SessionMsg& SessionMsg::operator=(const SessionMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    SessionObjects = other.SessionObjects;
    Preferences = other.Preferences;
  }
  return *this;
}

SessionMsg::~SessionMsg() = default;

void SessionMsg::RegisterFields() {
  RegisterCollection("SessionObjects", &SessionObjects, &internal::ReadRecordInto<InteropObjRef>,
                     &internal::WriteRecords<InteropObjRef>);
  RegisterCollection("Preferences", &Preferences, &internal::ReadRecordInto<StringArrayProperty>,
                     &internal::WriteRecords<StringArrayProperty>);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07
