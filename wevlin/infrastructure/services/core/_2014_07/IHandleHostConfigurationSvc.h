#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_IHANDLEHOSTCONFIGURATIONSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_IHANDLEHOSTCONFIGURATIONSVC_H_

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationResponseMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// Implemented by the application to serve the "_2014_07" host configuration
// service (HostConfigurationSvc): supplies the settings that the page asks
// for.
//
// The application owns its handler; the library never deletes one (hence the
// protected, non-virtual destructor), and the handler must outlive every
// service built on it. Called on the thread that runs the page's script.
class WEVLIN_EXPORT IHandleHostConfigurationSvc {
 public:
  IHandleHostConfigurationSvc() = default;
  IHandleHostConfigurationSvc(const IHandleHostConfigurationSvc&) = default;
  IHandleHostConfigurationSvc& operator=(const IHandleHostConfigurationSvc&) = default;

  // Returns the host configuration for the page shown in `instance`, asked
  // on every call of the service; `descriptor` is the service descriptor the
  // call was resolved to. Both pointers are valid for the call only. The
  // returned message stays owned by the handler and must stay alive until
  // the service has written its text (at least until this call's service
  // invocation returns). An exception thrown here reaches the page as an
  // exception record.
  virtual const HostConfigurationResponseMsg& GetHostConfiguration(
      Interop::IHostControlInstance* instance, Interop::IHostServiceDescriptor* descriptor) = 0;

 protected:
  ~IHandleHostConfigurationSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_IHANDLEHOSTCONFIGURATIONSVC_H_
