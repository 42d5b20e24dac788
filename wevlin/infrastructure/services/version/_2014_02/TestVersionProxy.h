#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONPROXY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONPROXY_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/services/BaseServiceProxy.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

// Proxy to the page's version test service
// "tavo.wevlin.infrastructure.services.version.TestVersionSvc", version
// "_2014_02": checks that a call from the host reaches the page's service of
// exactly this name and version.
//
// A mismatch in the page's answer is caught by debug assertions (the process
// aborts with the assertion's expression, file and line); in a build without
// assertions nothing is checked and the answer is returned as it is.
//
// Ownership: the proxy does not own its instance, which must outlive every
// call. Threading: use it on the thread that drives the browser control.
class WEVLIN_EXPORT TestVersionProxy : public BaseServiceProxy {
 public:
  // Binds the proxy to `instance` (not owned; may be null, then nothing is
  // sent).
  explicit TestVersionProxy(Interop::IHostControlInstance* instance);
  TestVersionProxy(const TestVersionProxy& other);
  TestVersionProxy& operator=(const TestVersionProxy& other);
  ~TestVersionProxy() override;

  // Calls the page's service with a request naming the proxy's target and
  // returns the answer read from the page's reply (members the reply lacks,
  // or all of them when it does not read, keep their empty defaults). Asserts
  // that the answer names the target's FQN and version. Without an instance,
  // returns the default answer and calls nothing. Exceptions of
  // InvokeWebMethod (e.g. std::runtime_error "Cannot talk to hosted content")
  // pass to the caller.
  TestVersionResponseMsg GetClientServiceVersion();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONPROXY_H_
