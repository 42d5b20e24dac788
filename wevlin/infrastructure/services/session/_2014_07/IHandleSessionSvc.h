#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_IHANDLESESSIONSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_IHANDLESESSIONSVC_H_

#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07 {

// Implemented by the application to receive the session that the page
// reports through SessionSvc.
//
// The application owns its handler; the library never deletes one (hence the
// protected, non-virtual destructor), and the handler must outlive every
// service built on it. Called on the thread that runs the page's script.
class WEVLIN_EXPORT IHandleSessionSvc {
 public:
  IHandleSessionSvc() = default;
  IHandleSessionSvc(const IHandleSessionSvc&) = default;
  IHandleSessionSvc& operator=(const IHandleSessionSvc&) = default;

  // Receives one session message from the page, already parsed; elements of
  // its lists that did not parse have been dropped. `session` is valid only
  // during the call; copy it to keep it. An exception thrown here reaches the
  // page as an exception record.
  virtual void OnSession(const SessionMsg& session) = 0;

 protected:
  ~IHandleSessionSvc() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SESSION_2014_07_IHANDLESESSIONSVC_H_
