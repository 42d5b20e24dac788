#include "wevlin/infrastructure/services/version/_2014_02/TestVersionProxy.h"

#include <cassert>
#include <exception>
#include <string>

#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionInputMsg.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

TestVersionProxy::TestVersionProxy(Interop::IHostControlInstance* instance)
    : BaseServiceProxy(instance, ServiceNames::kTestVersion, ServiceVersions::k2014_02) {}

TestVersionProxy::TestVersionProxy(const TestVersionProxy& other) = default;

TestVersionProxy& TestVersionProxy::operator=(const TestVersionProxy& other) = default;

TestVersionProxy::~TestVersionProxy() = default;

TestVersionResponseMsg TestVersionProxy::GetClientServiceVersion() {
  TestVersionResponseMsg returnMessage;
  Interop::IHostControlInstance* instance = GetHostControlInstance();
  if (instance == nullptr) return returnMessage;

  Interop::ITargetServiceDesc* targetDesc = GetBaseServiceDescriptor();
  TestVersionInputMsg request;
  request.ServiceName = targetDesc->GetFQN();
  request.ServiceVersion = targetDesc->GetSvcVersion();
  const std::string answer = instance->InvokeWebMethod(targetDesc, request.ToJsonString());
  try {
    returnMessage.FromJsonString(answer);
  } catch (const std::exception&) {
    // An answer that does not read leaves the defaults; the checks decide.
  }

  assert(targetDesc->GetFQN() == returnMessage.ServiceName);
  assert(targetDesc->GetSvcVersion() == returnMessage.ServiceVersion);
  return returnMessage;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02
