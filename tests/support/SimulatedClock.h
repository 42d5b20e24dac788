#ifndef WEVLIN_TESTS_SUPPORT_SIMULATEDCLOCK_H_
#define WEVLIN_TESTS_SUPPORT_SIMULATEDCLOCK_H_

#include <atomic>
#include <cstdint>

#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace wevlin_test {

// A wall clock for the time-out timers that stands still until the test
// moves it. Install it with SetTimerClockForTesting, or through a
// TimerEnvironmentScope.
//
// Every method is safe to call from any thread.
class SimulatedClock
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal::TimerClock {
 public:
  // An arbitrary instant (2023-11-14 22:13:20 UTC) at which a simulated
  // clock starts unless told otherwise.
  static constexpr std::int64_t kDefaultStartSeconds = 1700000000;

  explicit SimulatedClock(std::int64_t nowSeconds = kDefaultStartSeconds);

  // Returns the simulated time in whole seconds since the epoch.
  std::int64_t NowSeconds() override;

  // Sets the simulated time to `seconds` since the epoch.
  void SetNowSeconds(std::int64_t seconds);

  // Moves the simulated time by `seconds` (backwards when negative).
  void AdvanceSeconds(std::int64_t seconds);

 private:
  std::atomic<std::int64_t> nowSeconds_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_SIMULATEDCLOCK_H_
