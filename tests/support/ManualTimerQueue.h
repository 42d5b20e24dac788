#ifndef WEVLIN_TESTS_SUPPORT_MANUALTIMERQUEUE_H_
#define WEVLIN_TESTS_SUPPORT_MANUALTIMERQUEUE_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace wevlin_test {

// A system timer queue for the time-out timers whose one-shot timers never
// fire by themselves: the test fires them with Fire(), on its own thread,
// whenever it likes, regardless of their due times. It records every Arm
// (with its period) and every Disarm. Install it with
// SetSystemTimerQueueForTesting, or through a TimerEnvironmentScope.
//
// Every method is safe to call from any thread. Fire() calls the callback
// without holding the queue's lock, so the callback may arm and disarm.
class ManualTimerQueue
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal::SystemTimerQueue {
 public:
  ManualTimerQueue();
  ~ManualTimerQueue() override;

  // Records the request and, unless SetArmFails(true) is in force, adds a
  // pending one-shot timer and returns its handle (never null). Returns null
  // when arming is set to fail.
  void* Arm(unsigned int dueMs, void (*callback)()) override;

  // Records the request and drops the pending one-shot timer `handle`, if it
  // has not fired. A handle that already fired or was disarmed is recorded
  // too and otherwise ignored.
  void Disarm(void* handle) override;

  // Returns whether a one-shot timer is pending (armed, and neither fired
  // nor disarmed).
  bool IsArmed() const;

  // Returns the number of pending one-shot timers.
  std::size_t PendingCount() const;

  // Returns how often Arm has been called, failed calls included.
  int ArmCount() const;

  // Returns how often Disarm has been called.
  int DisarmCount() const;

  // Returns the due time in milliseconds of the latest Arm call, or 0 when
  // Arm has not been called.
  unsigned int LastPeriod() const;

  // Returns the due times of all Arm calls, oldest first.
  std::vector<unsigned int> ArmedPeriods() const;

  // Makes later Arm calls fail (return null) while `fails` is true.
  void SetArmFails(bool fails);

  // Fires the oldest pending one-shot timer: drops it from the pending
  // timers and calls its callback on the calling thread, as the system would
  // on its own thread. Returns false, and calls nothing, when none is pending.
  bool Fire();

 private:
  mutable std::mutex mutex_;
  // Pending one-shot timers by handle; handles count up, so the first entry
  // is the oldest.
  std::map<std::uintptr_t, void (*)()> pending_;
  std::vector<unsigned int> armedPeriods_;
  int disarmCount_ = 0;
  std::uintptr_t nextId_ = 1;
  bool armFails_ = false;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_MANUALTIMERQUEUE_H_
