#ifndef WEVLIN_TESTS_SUPPORT_TIMERENVIRONMENTSCOPE_H_
#define WEVLIN_TESTS_SUPPORT_TIMERENVIRONMENTSCOPE_H_

#include <cstdint>

#include "support/ManualTimerQueue.h"
#include "support/SimulatedClock.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace wevlin_test {

// Puts the time-out timers on a SimulatedClock and a ManualTimerQueue for as
// long as it lives, and puts back the clock and queue that were in use
// before (normally the platform's) when it is destroyed.
//
// Create it before any timer and destroy it after the last one: a system
// timer belongs to the queue that armed it. The scope owns its clock and
// queue. Create and destroy it on the test's thread; the clock and queue
// themselves may be used from any thread.
class TimerEnvironmentScope {
 public:
  explicit TimerEnvironmentScope(std::int64_t startSeconds = SimulatedClock::kDefaultStartSeconds);
  ~TimerEnvironmentScope();
  TimerEnvironmentScope(const TimerEnvironmentScope&) = delete;
  TimerEnvironmentScope& operator=(const TimerEnvironmentScope&) = delete;

  // Returns the installed clock.
  SimulatedClock& Clock() { return clock_; }

  // Returns the installed queue.
  ManualTimerQueue& Queue() { return queue_; }

 private:
  SimulatedClock clock_;
  ManualTimerQueue queue_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal::TimerClock* previousClock_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal::SystemTimerQueue* previousQueue_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_TIMERENVIRONMENTSCOPE_H_
