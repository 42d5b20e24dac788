#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationProxy.h"

#include <utility>

#include "wevlin/infrastructure/services/ServiceNames.h"
#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationMsg.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02 {

OpenLocationProxy::OpenLocationProxy(Interop::IHostControlInstance* instance)
    : BaseServiceProxy(instance, ServiceNames::kOpenLocationClient, ServiceVersions::k2014_02) {}

OpenLocationProxy::~OpenLocationProxy() = default;

void OpenLocationProxy::openLocation(std::string location,
                                     const std::vector<Core::_2014_02::InteropObjRef>& objects) {
  Interop::IHostControlInstance* instance = GetHostControlInstance();
  // Nothing to send to; the call must not fail for the caller either way.
  if (instance == nullptr) return;

  std::string text;
  try {
    OpenLocationMsg message;
    message.location = std::move(location);
    message.OpenComponent = objects;
    text = message.ToJsonString();
  } catch (...) {
    return;
  }

  try {
    instance->InvokeWebEvent(GetBaseServiceDescriptor(), std::move(text));
  } catch (...) {
    // The page's failure (a std::exception or the web control's script
    // exception) is not the caller's concern: opening a location is a hint.
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02
