// The timers on the platform's own system timer, which runs checks on a
// thread of its own. The check period is shortened for the tests and the
// clock simulated, so a due timer fires within moments.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "support/SimulatedClock.h"
#include "wevlin/infrastructure/interop/IHandleTimerEvent.h"
#include "wevlin/infrastructure/interop/Timer.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::Timer;

// Long enough for any healthy machine, sanitizer or not; reaching it means
// the awaited event never came.
constexpr std::chrono::seconds kPatience(20);

// A flag that one thread sets and another waits for.
class Signal {
 public:
  // Sets the flag. Notifies under the lock, so that the waiter, once woken,
  // may destroy the signal at once.
  void Set() {
    std::lock_guard<std::mutex> lock(mutex_);
    set_ = true;
    changed_.notify_all();
  }

  // Returns whether the flag was set within kPatience.
  bool Wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, kPatience, [this] { return set_; });
  }

  bool IsSet() {
    std::lock_guard<std::mutex> lock(mutex_);
    return set_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool set_ = false;
};

// The system timer thread may still be finishing a check when a test ends,
// so the simulated clock is never destroyed.
wevlin_test::SimulatedClock& SharedClock() {
  static auto* clock = new wevlin_test::SimulatedClock();
  return *clock;
}

class TimerThreadTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousClock_ = interop::internal::SetTimerClockForTesting(&clock_);
    previousPeriod_ = interop::internal::SetCheckPeriodForTesting(20);
  }

  void TearDown() override {
    interop::internal::SetCheckPeriodForTesting(previousPeriod_);
    interop::internal::SetTimerClockForTesting(previousClock_);
  }

  wevlin_test::SimulatedClock& clock_ = SharedClock();

 private:
  interop::internal::TimerClock* previousClock_ = nullptr;
  unsigned int previousPeriod_ = 0;
};

class ThreadRecordingHandler final : public interop::IHandleTimerEvent {
 public:
  void OnTimerElapsed() override {
    thread = std::this_thread::get_id();
    calls.fetch_add(1);
    called.Set();
  }

  std::thread::id thread;
  std::atomic<int> calls{0};
  Signal called;
};

TEST_F(TimerThreadTest, ElapsedArrivesOnTheSystemTimerThread) {
  ThreadRecordingHandler handler;
  Timer timer(&handler, 1000);
  clock_.AdvanceSeconds(2);
  ASSERT_TRUE(handler.called.Wait());
  EXPECT_NE(handler.thread, std::this_thread::get_id());
  EXPECT_EQ(handler.calls.load(), 1);
}

TEST_F(TimerThreadTest, TimerDeletedBeforeItsCheckIsNeverCalled) {
  ThreadRecordingHandler deletedHandler;
  ThreadRecordingHandler sentinel;
  { Timer deleted(&deletedHandler, -1000); }
  // A later due timer: once its check has run, a check has passed at which
  // the deleted timer would have been due as well.
  Timer timer(&sentinel, -1000);
  ASSERT_TRUE(sentinel.called.Wait());
  EXPECT_EQ(deletedHandler.calls.load(), 0);
}

// Holds the check inside OnTimerElapsed until released, and notes whether
// the timer's destructor had already returned by the time it returns.
class BlockingHandler final : public interop::IHandleTimerEvent {
 public:
  void OnTimerElapsed() override {
    entered.Set();
    releasedInTime = release.Wait();
    deleteReturnedBeforeCallEnded = deleteReturned.load();
  }

  Signal entered;
  Signal release;
  std::atomic<bool> deleteReturned{false};
  bool releasedInTime = false;
  bool deleteReturnedBeforeCallEnded = true;
};

TEST_F(TimerThreadTest, DestructorWaitsForTheCallInProgressOnAnotherThread) {
  BlockingHandler handler;
  auto timer = std::make_unique<Timer>(&handler, -1000);
  ASSERT_TRUE(handler.entered.Wait());

  Signal deleting;
  std::thread deleter([&] {
    deleting.Set();
    timer.reset();
    handler.deleteReturned.store(true);
  });
  ASSERT_TRUE(deleting.Wait());
  // Give a destructor that does not wait every chance to return early.
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_FALSE(handler.deleteReturned.load());
  handler.release.Set();
  deleter.join();

  EXPECT_TRUE(handler.releasedInTime);
  EXPECT_FALSE(handler.deleteReturnedBeforeCallEnded);
  EXPECT_TRUE(handler.deleteReturned.load());
}

class SelfDeletingHandler final : public interop::IHandleTimerEvent {
 public:
  void OnTimerElapsed() override {
    thread = std::this_thread::get_id();
    delete timer;
    timer = nullptr;
    deleted.Set();
  }

  Timer* timer = nullptr;
  std::thread::id thread;
  Signal deleted;
};

TEST_F(TimerThreadTest, HandlerDeletingItsOwnTimerDoesNotDeadlock) {
  SelfDeletingHandler handler;
  handler.timer = new Timer(&handler, 1000);
  // Due only now, after `timer` has been stored where the handler reads it.
  clock_.AdvanceSeconds(2);
  ASSERT_TRUE(handler.deleted.Wait());
  EXPECT_NE(handler.thread, std::this_thread::get_id());

  // The timer thread is still alive and the timers are consistent: a new
  // timer fires as well.
  ThreadRecordingHandler next;
  Timer timer(&next, -1000);
  ASSERT_TRUE(next.called.Wait());
}

// Counts calls and remembers a call that came after its timer was deleted.
class GuardedHandler final : public interop::IHandleTimerEvent {
 public:
  void OnTimerElapsed() override {
    if (timerDeleted.load()) {
      callAfterDelete.store(true);
    }
    calls.fetch_add(1);
  }

  std::atomic<bool> timerDeleted{false};
  std::atomic<bool> callAfterDelete{false};
  std::atomic<int> calls{0};
};

TEST_F(TimerThreadTest, CreatingAndDeletingWhileChecksRunIsSafe) {
  std::deque<GuardedHandler> handlers;
  std::deque<std::unique_ptr<Timer>> timers;
  for (int i = 0; i < 3000; ++i) {
    handlers.emplace_back();
    // Half of the timers are due at once, half never within the test.
    timers.push_back(std::make_unique<Timer>(&handlers.back(), i % 2 == 0 ? -1000 : 3600000));
    if (timers.size() > 8) {
      GuardedHandler* handler = static_cast<GuardedHandler*>(timers.front()->GetHandler());
      timers.pop_front();
      handler->timerDeleted.store(true);
    }
    if (i % 100 == 0) {
      clock_.AdvanceSeconds(1);
      std::this_thread::yield();
    }
  }
  while (!timers.empty()) {
    GuardedHandler* handler = static_cast<GuardedHandler*>(timers.front()->GetHandler());
    timers.pop_front();
    handler->timerDeleted.store(true);
  }
  for (const GuardedHandler& handler : handlers) {
    EXPECT_LE(handler.calls.load(), 1);
    EXPECT_FALSE(handler.callAfterDelete.load());
  }
  // Timers of the "never" half must not have fired.
  for (std::size_t i = 1; i < handlers.size(); i += 2) {
    EXPECT_EQ(handlers[i].calls.load(), 0) << "timer " << i;
  }
}

}  // namespace
