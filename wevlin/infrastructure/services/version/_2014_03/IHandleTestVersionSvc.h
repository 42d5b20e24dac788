#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_IHANDLETESTVERSIONSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_IHANDLETESTVERSIONSVC_H_

#include "wevlin/infrastructure/services/version/_2014_03/TestVersionInputMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03 {

// Handler interface of the version test service, version "_2014_03". The
// service answers every request itself and never calls its handler; the
// interface exists so that the service follows the pattern of the others.
//
// The service holds the handler by plain pointer (may be null) and never
// deletes it.
class WEVLIN_EXPORT IHandleTestVersionSvc {
 public:
  IHandleTestVersionSvc() = default;
  IHandleTestVersionSvc(const IHandleTestVersionSvc&) = default;
  IHandleTestVersionSvc& operator=(const IHandleTestVersionSvc&) = default;

  // Would receive a version test request (by reference, valid only during the
  // call, on the thread that drives the browser control). Not called by
  // TestVersionSvc01.
  virtual void OnTestVersion(const TestVersionInputMsg& request) = 0;

 protected:
  // Not virtual: the library never destroys a handler.
  ~IHandleTestVersionSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_VERSION_2014_03_IHANDLETESTVERSIONSVC_H_
