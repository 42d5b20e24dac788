#include "wevlin/infrastructure/services/version/_2014_03/TestVersionSvc01.h"

#include <cassert>
#include <exception>

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionInputMsg.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

TestVersionSvc01::TestVersionSvc01(IHandleTestVersionSvc* handler)
    : BaseHostingService(ServiceNames::kTestVersion, ServiceVersions::k2014_03),
      handler_(handler) {}

TestVersionSvc01::TestVersionSvc01(const TestVersionSvc01& other) = default;

TestVersionSvc01& TestVersionSvc01::operator=(const TestVersionSvc01& other) = default;

TestVersionSvc01::~TestVersionSvc01() = default;

std::string TestVersionSvc01::DoInvokeMethod(Interop::IHostControlInstance* /*instance*/,
                                             Interop::IHostServiceDescriptor* /*descriptor*/,
                                             std::string payload) {
  TestVersionInputMsg inputMessage;
  bool parsed = false;
  try {
    parsed = inputMessage.FromJsonString(payload);
  } catch (const std::exception&) {
    parsed = false;
  }
  if (!parsed) return {};

  assert(inputMessage.ServiceName == GetFQN());
  assert(inputMessage.ServiceVersion == GetSvcVersion());
  assert(inputMessage.ExtraInfo == "Extra Info");

  TestVersionResponseMsg response;
  response.ServiceName = GetFQN();
  response.ServiceVersion = GetSvcVersion();
  response.Result = true;
  return response.ToJsonString();
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03
