#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshSvc.h"

#include <exception>
#include <string>

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {
namespace {

// Reads `payload` into `refresh`. A payload that fails to parse, by the
// contract's result or by an exception, gives false: the page's text must
// never make the event fail.
bool Parse(RefreshMsg& refresh, const std::string& payload) {
  try {
    return refresh.FromJsonString(payload);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

RefreshSvc::RefreshSvc(IHandleRefreshSvc* handler)
    : BaseHostingService(ServiceNames::kRefreshHost, ServiceVersions::k2014_07),
      handler_(handler) {}

RefreshSvc::~RefreshSvc() = default;

void RefreshSvc::DoInvokeEvent(Interop::IHostControlInstance* /*instance*/,
                               Interop::IHostServiceDescriptor* /*descriptor*/,
                               std::string payload) {
  RefreshMsg refresh;
  if (handler_ == nullptr) return;
  if (!Parse(refresh, payload)) return;
  handler_->OnRefresh(refresh);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07
