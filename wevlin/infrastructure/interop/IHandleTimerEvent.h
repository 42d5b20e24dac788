#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_IHANDLETIMEREVENT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_IHANDLETIMEREVENT_H_

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// Receives the expiry of a Timer. Every host control instance is one, for
// its launch time-out.
//
// A timer does not own its handler, and the handler is never deleted through
// this interface. OnTimerElapsed runs on the system timer thread, not on the
// application's thread (see Timer for what a handler may and may not do
// there).
class WEVLIN_EXPORT IHandleTimerEvent {
 public:
  // Handles the expiry of a timer created with this handler. Called once per
  // timer, on the system timer thread. The handler may delete that timer
  // here. An exception thrown here is caught and logged by the timer.
  virtual void OnTimerElapsed() = 0;

 protected:
  IHandleTimerEvent() = default;
  IHandleTimerEvent(const IHandleTimerEvent&) = default;
  IHandleTimerEvent& operator=(const IHandleTimerEvent&) = default;
  ~IHandleTimerEvent() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_IHANDLETIMEREVENT_H_
