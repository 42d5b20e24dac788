#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_IHANDLEREFRESHSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_IHANDLEREFRESHSVC_H_

#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07 {

// Implemented by the application to receive the changed objects that the page
// reports through RefreshSvc.
//
// The application owns its handler; the library never deletes one (hence the
// protected, non-virtual destructor), and the handler must outlive every
// service built on it. Called on the thread that runs the page's script.
class WEVLIN_EXPORT IHandleRefreshSvc {
 public:
  IHandleRefreshSvc() = default;
  IHandleRefreshSvc(const IHandleRefreshSvc&) = default;
  IHandleRefreshSvc& operator=(const IHandleRefreshSvc&) = default;

  // Receives one refresh message from the page, already parsed; elements of
  // its lists that did not parse have been dropped. `refresh` is valid only
  // during the call; copy it to keep it. An exception thrown here reaches the
  // page as an exception record.
  virtual void OnRefresh(const RefreshMsg& refresh) = 0;

 protected:
  ~IHandleRefreshSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_REFRESH_2014_07_IHANDLEREFRESHSVC_H_
