#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

TestVersionResponseMsg::TestVersionResponseMsg() : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

TestVersionResponseMsg::TestVersionResponseMsg(const TestVersionResponseMsg& other)
    : BaseMessage(other), ServiceName(other.ServiceName), ServiceVersion(other.ServiceVersion) {
  RegisterFields();
}

TestVersionResponseMsg& TestVersionResponseMsg::operator=(const TestVersionResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    ServiceName = other.ServiceName;
    ServiceVersion = other.ServiceVersion;
  }
  return *this;
}

TestVersionResponseMsg::~TestVersionResponseMsg() = default;

void TestVersionResponseMsg::RegisterFields() {
  RegisterField("ServiceName", ServiceName);
  RegisterField("ServiceVersion", ServiceVersion);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02
