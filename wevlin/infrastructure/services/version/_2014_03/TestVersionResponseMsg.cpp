#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

TestVersionResponseMsg::TestVersionResponseMsg() : BaseMessage(ServiceVersions::k2014_03) {
  RegisterFields();
}

TestVersionResponseMsg::TestVersionResponseMsg(const TestVersionResponseMsg& other)
    : BaseMessage(other),
      ServiceName(other.ServiceName),
      ServiceVersion(other.ServiceVersion),
      Result(other.Result) {
  RegisterFields();
}

TestVersionResponseMsg& TestVersionResponseMsg::operator=(const TestVersionResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    ServiceName = other.ServiceName;
    ServiceVersion = other.ServiceVersion;
    Result = other.Result;
  }
  return *this;
}

TestVersionResponseMsg::~TestVersionResponseMsg() = default;

void TestVersionResponseMsg::RegisterFields() {
  RegisterField("ServiceName", ServiceName);
  RegisterField("ServiceVersion", ServiceVersion);
  RegisterField("Result", Result);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03
