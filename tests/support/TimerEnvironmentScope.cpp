#include "support/TimerEnvironmentScope.h"

namespace wevlin_test {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

TimerEnvironmentScope::TimerEnvironmentScope(std::int64_t startSeconds)
    : clock_(startSeconds),
      previousClock_(interop::internal::SetTimerClockForTesting(&clock_)),
      previousQueue_(interop::internal::SetSystemTimerQueueForTesting(&queue_)) {}

TimerEnvironmentScope::~TimerEnvironmentScope() {
  interop::internal::SetSystemTimerQueueForTesting(previousQueue_);
  interop::internal::SetTimerClockForTesting(previousClock_);
}

}  // namespace wevlin_test
