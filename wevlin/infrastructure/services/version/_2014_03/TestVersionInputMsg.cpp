#include "wevlin/infrastructure/services/version/_2014_03/TestVersionInputMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

TestVersionInputMsg::TestVersionInputMsg() : BaseMessage(ServiceVersions::k2014_03) {
  RegisterFields();
}

TestVersionInputMsg::TestVersionInputMsg(const TestVersionInputMsg& other)
    : BaseMessage(other),
      ServiceName(other.ServiceName),
      ServiceVersion(other.ServiceVersion),
      ExtraInfo(other.ExtraInfo) {
  RegisterFields();
}

TestVersionInputMsg& TestVersionInputMsg::operator=(const TestVersionInputMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    ServiceName = other.ServiceName;
    ServiceVersion = other.ServiceVersion;
    ExtraInfo = other.ExtraInfo;
  }
  return *this;
}

TestVersionInputMsg::~TestVersionInputMsg() = default;

void TestVersionInputMsg::RegisterFields() {
  RegisterField("ServiceName", ServiceName);
  RegisterField("ServiceVersion", ServiceVersion);
  RegisterField("ExtraInfo", ExtraInfo);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03
