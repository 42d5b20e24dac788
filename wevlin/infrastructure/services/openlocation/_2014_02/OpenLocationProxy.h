#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_OPENLOCATION_2014_02_OPENLOCATIONPROXY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_OPENLOCATION_2014_02_OPENLOCATIONPROXY_H_

#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/services/BaseServiceProxy.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02 {

// Proxy to the page's service
// "tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client" in
// version "_2014_02": asks the page to open a location, optionally with the
// objects to show there, as an event (OpenLocationMsg). Sending never fails
// for the caller: every failure is swallowed silently.
//
// The proxy does not own its instance, which must outlive every call. Use it
// on the thread that drives the browser control.
class WEVLIN_EXPORT OpenLocationProxy : public BaseServiceProxy {
 public:
  // Creates a proxy talking to the page of `instance`; build it on a real
  // instance (one built on null sends nothing).
  explicit OpenLocationProxy(Interop::IHostControlInstance* instance);
  ~OpenLocationProxy() override;

  // Asks the page to open `location` with `objects` (may be empty). Nothing
  // is awaited; any exception, of writing the message or of the instance
  // (the page cannot be talked to, the script failed), is caught and
  // discarded, so the caller is never told whether the page got it.
  void openLocation(std::string location,
                    const std::vector<Core::_2014_02::InteropObjRef>& objects);
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_OPENLOCATION_2014_02_OPENLOCATIONPROXY_H_
