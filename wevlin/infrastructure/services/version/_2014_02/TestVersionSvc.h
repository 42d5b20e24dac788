#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/version/_2014_02/IHandleTestVersionSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02 {

// Host service "tavo.wevlin.infrastructure.services.version.TestVersionSvc",
// version "_2014_02": a method with which the page checks that its call
// reached the service of exactly the name and version it meant. The request
// is a TestVersionInputMsg naming the service it means; the answer a
// TestVersionResponseMsg naming this service,
// {"Version": "_2014_02", "ServiceName":
// "tavo.wevlin.infrastructure.services.version.TestVersionSvc",
//  "ServiceVersion": "_2014_02"}.
//
// A mismatch is a programming error of the page and is caught by debug
// assertions (the process aborts with the assertion's expression, file and
// line); in a build without assertions nothing is checked and the answer is
// sent anyway. A payload that does not read as a request is answered with the
// empty text.
//
// Ownership: the handler is stored (not owned, may be null) and never called.
// Threading: called on the thread that drives the browser control.
class WEVLIN_EXPORT TestVersionSvc : public BaseHostingService {
 public:
  // Creates the service; `handler` is kept but never used.
  explicit TestVersionSvc(IHandleTestVersionSvc* handler);
  TestVersionSvc(const TestVersionSvc& other);
  TestVersionSvc& operator=(const TestVersionSvc& other);
  ~TestVersionSvc() override;

 protected:
  // Reads `payload` as a TestVersionInputMsg; returns "" when it does not
  // read. Asserts that its "ServiceName" and "ServiceVersion" equal this
  // service's FQN and version, then returns the JSON text of the answer.
  std::string DoInvokeMethod(Interop::IHostControlInstance* instance,
                             Interop::IHostServiceDescriptor* descriptor,
                             std::string payload) override;

 private:
  // Kept as the other services keep theirs; the test service never calls it.
  [[maybe_unused]] IHandleTestVersionSvc* handler_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_02_TESTVERSIONSVC_H_
