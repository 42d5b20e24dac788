#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshProxy.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {

RefreshProxy::RefreshProxy(Interop::IHostControlInstance* instance)
    : BaseServiceProxy(instance, ServiceNames::kRefreshClient, ServiceVersions::k2014_07) {}

RefreshProxy::~RefreshProxy() = default;

void RefreshProxy::SendRefresh(const RefreshMsg& refresh) {
  Interop::IHostControlInstance* instance = GetHostControlInstance();
  if (instance == nullptr) return;
  instance->InvokeWebEvent(GetBaseServiceDescriptor(), refresh.ToJsonString());
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07
