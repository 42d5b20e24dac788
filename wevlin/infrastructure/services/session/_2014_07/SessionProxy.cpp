#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07 {

SessionProxy::SessionProxy(Interop::IHostControlInstance* instance)
    : BaseServiceProxy(instance, ServiceNames::kSessionClient, ServiceVersions::k2014_07) {}

SessionProxy::~SessionProxy() = default;

void SessionProxy::UpdateSession(const SessionMsg& session) {
  Interop::IHostControlInstance* instance = GetHostControlInstance();
  if (instance == nullptr) return;
  instance->InvokeWebEvent(GetBaseServiceDescriptor(), session.ToJsonString());
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07
