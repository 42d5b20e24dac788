#include "wevlin/infrastructure/services/version/_2014_02/TestVersionInputMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

TestVersionInputMsg::TestVersionInputMsg() : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

TestVersionInputMsg::TestVersionInputMsg(const TestVersionInputMsg& other)
    : BaseMessage(other), ServiceName(other.ServiceName), ServiceVersion(other.ServiceVersion) {
  RegisterFields();
}

TestVersionInputMsg& TestVersionInputMsg::operator=(const TestVersionInputMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    ServiceName = other.ServiceName;
    ServiceVersion = other.ServiceVersion;
  }
  return *this;
}

TestVersionInputMsg::~TestVersionInputMsg() = default;

void TestVersionInputMsg::RegisterFields() {
  RegisterField("ServiceName", ServiceName);
  RegisterField("ServiceVersion", ServiceVersion);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02
