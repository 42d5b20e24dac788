#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONSVC01_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONSVC01_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/version/_2014_03/IHandleTestVersionSvc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

// Host service "tavo.wevlin.infrastructure.services.version.TestVersionSvc",
// version "_2014_03": a method with which the page checks that its call
// reached the service of exactly the name and version it meant, and that the
// newer request shape arrived intact. The request is a TestVersionInputMsg
// naming the service it means, with "ExtraInfo" exactly "Extra Info"; the
// answer a TestVersionResponseMsg naming this service with "Result" true,
// {"Version": "_2014_03", "ServiceName":
// "tavo.wevlin.infrastructure.services.version.TestVersionSvc",
//  "ServiceVersion": "_2014_03", "Result": true}.
//
// A mismatch is a programming error of the page and is caught by debug
// assertions (the process aborts with the assertion's expression, file and
// line); in a build without assertions nothing is checked and the answer is
// sent anyway. A payload that does not read as a request is answered with the
// empty text.
//
// Ownership: the handler is stored (not owned, may be null) and never called.
// Threading: called on the thread that drives the browser control.
class WEVLIN_EXPORT TestVersionSvc01 : public BaseHostingService {
 public:
  // Creates the service; `handler` is kept but never used.
  explicit TestVersionSvc01(IHandleTestVersionSvc* handler);
  TestVersionSvc01(const TestVersionSvc01& other);
  TestVersionSvc01& operator=(const TestVersionSvc01& other);
  ~TestVersionSvc01() override;

 protected:
  // Reads `payload` as a TestVersionInputMsg; returns "" when it does not
  // read. Asserts that its "ServiceName" and "ServiceVersion" equal this
  // service's FQN and version and that "ExtraInfo" is exactly "Extra Info"
  // (byte for byte), then returns the JSON text of the answer.
  std::string DoInvokeMethod(Interop::IHostControlInstance* instance,
                             Interop::IHostServiceDescriptor* descriptor,
                             std::string payload) override;

 private:
  // Kept as the other services keep theirs; the test service never calls it.
  [[maybe_unused]] IHandleTestVersionSvc* handler_;
};

// The version test service of this interface version, under the name the
// other versions use.
using TestVersionSvc = TestVersionSvc01;

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_TESTVERSIONSVC01_H_
