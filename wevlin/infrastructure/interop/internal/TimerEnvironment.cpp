#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

#include <atomic>

#include "wevlin/infrastructure/interop/port/Port.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {
namespace {

class PlatformTimerClock final : public TimerClock {
 public:
  std::int64_t NowSeconds() override { return port::WallClockSeconds(); }
};

class PlatformTimerQueue final : public SystemTimerQueue {
 public:
  void* Arm(unsigned int dueMs, void (*callback)()) override {
    return port::CreateOneShotTimer(dueMs, callback);
  }
  void Disarm(void* handle) override { port::DeleteOneShotTimer(handle); }
};

// The platform's implementations are stateless and leaked on purpose, so
// that a system timer firing during process exit still finds them.
TimerClock& PlatformClock() {
  static auto* clock = new PlatformTimerClock();
  return *clock;
}

SystemTimerQueue& PlatformQueue() {
  static auto* queue = new PlatformTimerQueue();
  return *queue;
}

// The substitutes installed by tests; null means "the platform's".
std::atomic<TimerClock*> testClock{nullptr};
std::atomic<SystemTimerQueue*> testQueue{nullptr};
std::atomic<unsigned int> testCheckPeriodMs{0};

}  // namespace

TimerClock& CurrentTimerClock() {
  TimerClock* clock = testClock.load(std::memory_order_acquire);
  return clock != nullptr ? *clock : PlatformClock();
}

SystemTimerQueue& CurrentSystemTimerQueue() {
  SystemTimerQueue* queue = testQueue.load(std::memory_order_acquire);
  return queue != nullptr ? *queue : PlatformQueue();
}

unsigned int CurrentCheckPeriodMs() {
  const unsigned int period = testCheckPeriodMs.load(std::memory_order_acquire);
  return period != 0 ? period : kTimerCheckPeriodMs;
}

TimerClock* SetTimerClockForTesting(TimerClock* clock) {
  return testClock.exchange(clock, std::memory_order_acq_rel);
}

SystemTimerQueue* SetSystemTimerQueueForTesting(SystemTimerQueue* queue) {
  return testQueue.exchange(queue, std::memory_order_acq_rel);
}

unsigned int SetCheckPeriodForTesting(unsigned int ms) {
  return testCheckPeriodMs.exchange(ms, std::memory_order_acq_rel);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
