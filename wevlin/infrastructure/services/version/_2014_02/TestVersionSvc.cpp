#include "wevlin/infrastructure/services/version/_2014_02/TestVersionSvc.h"

#include <cassert>
#include <exception>

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionInputMsg.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

TestVersionSvc::TestVersionSvc(IHandleTestVersionSvc* handler)
    : BaseHostingService(ServiceNames::kTestVersion, ServiceVersions::k2014_02),
      handler_(handler) {}

TestVersionSvc::TestVersionSvc(const TestVersionSvc& other) = default;

TestVersionSvc& TestVersionSvc::operator=(const TestVersionSvc& other) = default;

TestVersionSvc::~TestVersionSvc() = default;

std::string TestVersionSvc::DoInvokeMethod(Interop::IHostControlInstance* /*instance*/,
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

  TestVersionResponseMsg response;
  response.ServiceName = GetFQN();
  response.ServiceVersion = GetSvcVersion();
  return response.ToJsonString();
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02
