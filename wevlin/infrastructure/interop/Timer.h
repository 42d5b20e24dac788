#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_TIMER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_TIMER_H_

#include <cstdint>

#include "wevlin/infrastructure/interop/IHandleTimerEvent.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// A one-shot time-out: some time after its due time, the timer calls its
// handler's OnTimerElapsed once. A host control instance uses one to notice
// a page that never starts the handshake.
//
// Clock and checks. Time is the wall clock in whole seconds since the epoch,
// times 1000, cut to an unsigned 32-bit number of milliseconds (so it has a
// resolution of one second and wraps about every 49.7 days). A timer's due
// time is that clock at construction plus the interval, in the same 32-bit
// arithmetic. Timers are not woken individually: all live timers share one
// system one-shot timer that runs a check 150000 ms after it was armed, and
// again every 150000 ms while timers live, whatever the timers' own
// intervals. A check calls every timer whose due time the clock has strictly
// passed (an unsigned comparison, so a due time that equals the clock waits
// for the next check) and drops it from the live timers; a timer fires at
// most once. The comparison does not look across the wrap: a timer due just
// before the clock wraps is not fired by checks after the wrap until the
// clock passes its due time again. With an interval of 150000 ms the first check usually falls in
// the same second as the due time, so such a time-out fires at the second
// check, about 300 s after the timer was made.
//
// Ownership. Whoever creates a timer owns it and deletes it, fired or not;
// the timer does not own its handler, which must outlive it. Deleting a timer
// before it fires cancels it. The handler may delete its own timer inside
// OnTimerElapsed.
//
// Threads. Timers may be created and deleted on any thread, also while a
// check runs. OnTimerElapsed runs on the thread of the system timer (or on
// the thread of a test that runs a check), never under the timers' lock, so
// the handler may create and delete timers. Once a timer's destructor has
// returned, its handler is not called for it any more: a check calls only
// timers that are live at that moment, and a destructor that runs on another
// thread while the check is calling this timer's handler waits until that
// call has returned. A destructor that runs inside the handler's own call
// (the handler deleting its timer) does not wait. Therefore a handler must
// not wait for a thread that may be deleting its timer, or the two wait for
// each other.
class WEVLIN_EXPORT Timer {
 public:
  // Creates a timer that is due `intervalMs` milliseconds from now on the
  // clock described above and makes it live, arming the system timer if no
  // other timer lives. A negative interval gives a due time in the past,
  // which fires at the next check. `handler` is not owned and must outlive
  // the timer; a null handler gives a timer that expires silently.
  Timer(IHandleTimerEvent* handler, int intervalMs);

  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  // Cancels the timer if it has not fired, disarming the system timer when
  // no other timer lives. Waits while a check on another thread is calling
  // this timer's handler.
  virtual ~Timer();

  // Returns the handler given at construction.
  IHandleTimerEvent* GetHandler() const { return handler_; }

  // Returns the due time in milliseconds on the timers' 32-bit clock.
  std::uint32_t GetDueTime() const { return dueTime_; }

 private:
  IHandleTimerEvent* handler_;
  std::uint32_t dueTime_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_TIMER_H_
