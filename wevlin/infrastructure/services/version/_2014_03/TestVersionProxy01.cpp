#include "wevlin/infrastructure/services/version/_2014_03/TestVersionProxy01.h"

#include <cassert>
#include <exception>
#include <string>

#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionInputMsg.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

TestVersionProxy01::TestVersionProxy01(Interop::IHostControlInstance* instance)
    : BaseServiceProxy(instance, ServiceNames::kTestVersion, ServiceVersions::k2014_03) {}

TestVersionProxy01::TestVersionProxy01(const TestVersionProxy01& other) = default;

TestVersionProxy01& TestVersionProxy01::operator=(const TestVersionProxy01& other) = default;

TestVersionProxy01::~TestVersionProxy01() = default;

TestVersionResponseMsg TestVersionProxy01::GetClientServiceVersion() {
  TestVersionResponseMsg returnMessage;
  Interop::IHostControlInstance* instance = GetHostControlInstance();
  if (instance == nullptr) return returnMessage;

  Interop::ITargetServiceDesc* targetDesc = GetBaseServiceDescriptor();
  TestVersionInputMsg request;
  request.ServiceName = targetDesc->GetFQN();
  request.ServiceVersion = targetDesc->GetSvcVersion();
  request.ExtraInfo = "Extra Info";
  const std::string answer = instance->InvokeWebMethod(targetDesc, request.ToJsonString());
  try {
    returnMessage.FromJsonString(answer);
  } catch (const std::exception&) {
    // An answer that does not read leaves the defaults; the checks decide.
  }

  assert(targetDesc->GetFQN() == returnMessage.ServiceName);
  assert(targetDesc->GetSvcVersion() == returnMessage.ServiceVersion);
  assert(returnMessage.Result == true);
  return returnMessage;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03
