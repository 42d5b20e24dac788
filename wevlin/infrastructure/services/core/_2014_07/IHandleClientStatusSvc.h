#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_IHANDLECLIENTSTATUSSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_IHANDLECLIENTSTATUSSVC_H_

#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// Implemented by the application to receive the page's client status through
// ClientStatusSvc.
//
// The application owns its handler; the library never deletes one (hence the
// protected, non-virtual destructor), and the handler must outlive every
// service built on it. Called on the thread that runs the page's script.
class WEVLIN_EXPORT IHandleClientStatusSvc {
 public:
  IHandleClientStatusSvc() = default;
  IHandleClientStatusSvc(const IHandleClientStatusSvc&) = default;
  IHandleClientStatusSvc& operator=(const IHandleClientStatusSvc&) = default;

  // Receives one status that the page reported, already parsed. `status` is
  // valid only during the call; copy it to keep it. An exception thrown here
  // reaches the page as an exception record.
  virtual void OnClientStatus(const ClientStatusMsg& status) = 0;

 protected:
  ~IHandleClientStatusSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_IHANDLECLIENTSTATUSSVC_H_
