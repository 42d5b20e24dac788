#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_TIMERENVIRONMENT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_TIMERENVIRONMENT_H_

#include <cstdint>

// What the time-out timers (see Timer) take from their surroundings: the wall
// clock, the system's one-shot timers and the period between two checks. In
// the product these are the platform's clock, the platform's timer queue and
// 150000 ms. Tests substitute a simulated clock, a manually fired queue and a
// short period through the functions below, so that they can drive the timers
// deterministically and quickly. Nothing here is part of the installed
// interface.
namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// The time between two checks of the live timers in the product, in
// milliseconds.
inline constexpr unsigned int kTimerCheckPeriodMs = 150000;

// The wall clock of the timers.
//
// The default implementation asks the platform; implementations must be safe
// to call from any thread.
class TimerClock {
 public:
  TimerClock() = default;
  TimerClock(const TimerClock&) = delete;
  TimerClock& operator=(const TimerClock&) = delete;
  virtual ~TimerClock() = default;

  // Returns the wall-clock time in whole seconds since the epoch.
  virtual std::int64_t NowSeconds() = 0;
};

// The system's one-shot timers, on which the check of the live timers runs.
//
// The default implementation uses the platform's timer queue. Arm and Disarm
// are called with the timers' lock held, from the application's thread and
// from the thread that runs a check; an implementation must be safe to call
// from any thread and must never call the callback from inside Arm or Disarm
// (the callback takes the same lock). It runs the callback on a thread of its
// own choice, or, in tests, on whichever thread fires it.
class SystemTimerQueue {
 public:
  SystemTimerQueue() = default;
  SystemTimerQueue(const SystemTimerQueue&) = delete;
  SystemTimerQueue& operator=(const SystemTimerQueue&) = delete;
  virtual ~SystemTimerQueue() = default;

  // Starts a one-shot timer that calls `callback` once after `dueMs`
  // milliseconds. Returns an opaque non-null handle, or null on failure.
  virtual void* Arm(unsigned int dueMs, void (*callback)()) = 0;

  // Cancels the one-shot timer `handle` (from Arm of this queue) if it has
  // not fired yet, without waiting for a callback that is already running.
  virtual void Disarm(void* handle) = 0;
};

// Returns the clock the timers use now: the one installed for testing, or
// else the platform's. Safe to call from any thread.
TimerClock& CurrentTimerClock();

// Returns the queue the timers use now: the one installed for testing, or
// else the platform's. Safe to call from any thread.
SystemTimerQueue& CurrentSystemTimerQueue();

// Returns the period between two checks in milliseconds: the one set for
// testing, or else kTimerCheckPeriodMs. Safe to call from any thread.
unsigned int CurrentCheckPeriodMs();

// Installs `clock` as the timers' clock and returns the clock installed
// before (null when the platform's was in use). Null restores the platform's
// clock. The caller keeps ownership; `clock` must stay alive until it is
// replaced and no check is running any more.
TimerClock* SetTimerClockForTesting(TimerClock* clock);

// Installs `queue` as the timers' system timer queue and returns the queue
// installed before (null when the platform's was in use). Null restores the
// platform's queue. The caller keeps ownership.
//
// Requires that no timer lives and no check runs: the handle of an armed
// system timer belongs to the queue that made it. `queue` must stay alive
// until it is replaced.
SystemTimerQueue* SetSystemTimerQueueForTesting(SystemTimerQueue* queue);

// Sets the period between two checks to `ms` milliseconds and returns the
// period set before (0 when the product's period was in use). Zero restores
// kTimerCheckPeriodMs. Applies from the next time the system timer is armed.
unsigned int SetCheckPeriodForTesting(unsigned int ms);

// Runs one check of the live timers on the calling thread, exactly as the
// system timer's callback does when it fires: the held system timer is
// forgotten (as a fired one-shot timer would be, so it is not cancelled and
// may still fire later), due timers are called and dropped, and a new system
// timer is armed if timers remain. May run concurrently with other checks and
// with the creation and deletion of timers on other threads. To run the
// check that the armed system timer would run, fire that timer instead.
void RunTimerCheckForTesting();

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_TIMERENVIRONMENT_H_
