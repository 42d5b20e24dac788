#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONPROXY01_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONPROXY01_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/services/BaseServiceProxy.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

// Proxy to the page's version test service
// "tavo.wevlin.infrastructure.services.version.TestVersionSvc", version
// "_2014_03": checks that a call from the host reaches the page's service of
// exactly this name and version, and that the page accepted the request
// (sent with "ExtraInfo" "Extra Info").
//
// A mismatch in the page's answer is caught by debug assertions (the process
// aborts with the assertion's expression, file and line); in a build without
// assertions nothing is checked and the answer is returned as it is.
//
// Ownership: the proxy does not own its instance, which must outlive every
// call. Threading: use it on the thread that drives the browser control.
class WEVLIN_EXPORT TestVersionProxy01 : public BaseServiceProxy {
 public:
  // Binds the proxy to `instance` (not owned; may be null, then nothing is
  // sent).
  explicit TestVersionProxy01(Interop::IHostControlInstance* instance);
  TestVersionProxy01(const TestVersionProxy01& other);
  TestVersionProxy01& operator=(const TestVersionProxy01& other);
  ~TestVersionProxy01() override;

  // Calls the page's service with a request naming the proxy's target and
  // carrying "ExtraInfo" "Extra Info", and returns the answer read from the
  // page's reply (members the reply lacks, or all of them when it does not
  // read, keep their defaults: empty texts, Result false). Asserts that the
  // answer names the target's FQN and version and has Result true. Without an
  // instance, returns the default answer and calls nothing. Exceptions of
  // InvokeWebMethod pass to the caller.
  TestVersionResponseMsg GetClientServiceVersion();
};

// The version test proxy of this interface version, under the name the other
// versions use.
using TestVersionProxy = TestVersionProxy01;

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONPROXY01_H_
