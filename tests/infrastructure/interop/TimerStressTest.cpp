// Many threads creating and deleting timers while other threads run checks,
// with handlers that delete their own timers. Meant to be run under
// ThreadSanitizer as well.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <deque>
#include <thread>
#include <vector>

#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/IHandleTimerEvent.h"
#include "wevlin/infrastructure/interop/Timer.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::Timer;

constexpr int kCreatorThreads = 4;
constexpr int kTimersPerThread = 2500;
// Each creator deletes a timer this many iterations after creating it, so
// that checks find a good number of live timers.
constexpr int kDeleteLag = 32;
// Each creator leaves its last timers alive for a final check.
constexpr int kSurvivorsPerThread = 40;
// An interval that the simulated clock does not reach within a test (about
// eleven days of simulated time, a million seconds).
constexpr int kNeverDueMs = 1000000000;

// A handler that owns its timer. Whoever takes the timer out of `timer`
// first deletes it: the handler itself (if it deletes its own timer when
// called) or the creating thread. The handler outlives the timer.
class OwningHandler final : public interop::IHandleTimerEvent {
 public:
  explicit OwningHandler(bool deletesOwnTimer) : deletesOwnTimer_(deletesOwnTimer) {}

  void OnTimerElapsed() override {
    if (deletedByCreator.load()) {
      callAfterDelete.store(true);
    }
    calls.fetch_add(1);
    if (deletesOwnTimer_) {
      delete timer.exchange(nullptr);
    }
  }

  // Deletes the timer unless the handler has already done so; called by the
  // creating thread.
  void DeleteTimer() {
    Timer* mine = timer.exchange(nullptr);
    if (mine != nullptr) {
      delete mine;
      deletedByCreator.store(true);
    }
  }

  std::atomic<Timer*> timer{nullptr};
  std::atomic<int> calls{0};
  std::atomic<bool> deletedByCreator{false};
  std::atomic<bool> callAfterDelete{false};

 private:
  const bool deletesOwnTimer_;
};

int IntervalFor(int i) {
  switch (i % 4) {
    case 0:
      return -1000;  // due at once
    case 1:
      return 0;  // due after the next clock tick
    case 2:
      return 2000;
    default:
      return kNeverDueMs;
  }
}

// Creates kTimersPerThread timers on `handlers`, deleting each one
// kDeleteLag iterations later, except the last kSurvivorsPerThread.
void CreateAndDelete(std::deque<OwningHandler>& handlers) {
  for (int i = 0; i < kTimersPerThread; ++i) {
    handlers.emplace_back(i % 3 == 0);
    OwningHandler& handler = handlers.back();
    handler.timer.store(new Timer(&handler, IntervalFor(i)));
    const int victim = i - kDeleteLag;
    if (victim >= 0 && victim < kTimersPerThread - kSurvivorsPerThread) {
      handlers[static_cast<std::size_t>(victim)].DeleteTimer();
    }
    if (i % 8 == 0) {
      // Let the other threads in: a creator would otherwise often run
      // through its whole loop within one time slice.
      std::this_thread::yield();
    }
  }
}

void ExpectSoundHandlers(const std::vector<std::deque<OwningHandler>>& perThread) {
  for (const auto& handlers : perThread) {
    for (const OwningHandler& handler : handlers) {
      EXPECT_LE(handler.calls.load(), 1);
      EXPECT_FALSE(handler.callAfterDelete.load());
    }
  }
}

class TimerStressTest : public ::testing::Test {
 protected:
  // Runs one check, moving the clock on by a second first. The clock starts
  // at zero, so it cannot wrap within any realistic run.
  void Check() {
    checks_.fetch_add(1);
    env_.Clock().AdvanceSeconds(1);
    interop::internal::RunTimerCheckForTesting();
  }

  // Runs the checks of every system timer still pending in the queue (each
  // RunTimerCheckForTesting leaves the one-shot timer it replaces pending),
  // and expects that, with no timer live, none of them arms another.
  void ExpectNoSystemTimerAfterDraining() {
    const int arms = env_.Queue().ArmCount();
    while (env_.Queue().Fire()) {
    }
    EXPECT_EQ(env_.Queue().ArmCount(), arms);
    EXPECT_FALSE(env_.Queue().IsArmed());
  }

  wevlin_test::TimerEnvironmentScope env_{0};
  std::atomic<int> checks_{0};
};

TEST_F(TimerStressTest, CreatorsAndACheckerRunConcurrently) {
  std::vector<std::deque<OwningHandler>> perThread(kCreatorThreads);
  std::atomic<bool> creating{true};

  std::thread checker([&] {
    while (creating.load()) {
      Check();
    }
  });
  std::vector<std::thread> creators;
  for (auto& handlers : perThread) {
    creators.emplace_back([&handlers] { CreateAndDelete(handlers); });
  }
  for (std::thread& creator : creators) {
    creator.join();
  }
  creating.store(false);
  checker.join();
  EXPECT_GT(checks_.load(), 0);
  ExpectSoundHandlers(perThread);

  // The survivors that have not fired yet are all due now except the
  // never-due ones; one check fires every one of them, and each survivor has
  // then been called exactly once.
  env_.Clock().AdvanceSeconds(10);
  interop::internal::RunTimerCheckForTesting();
  for (const auto& handlers : perThread) {
    for (std::size_t i = kTimersPerThread - kSurvivorsPerThread; i < handlers.size(); ++i) {
      const int expected = IntervalFor(static_cast<int>(i)) == kNeverDueMs ? 0 : 1;
      EXPECT_EQ(handlers[i].calls.load(), expected) << "timer " << i;
    }
  }

  for (auto& handlers : perThread) {
    for (OwningHandler& handler : handlers) {
      handler.DeleteTimer();
    }
  }
  ExpectSoundHandlers(perThread);
  ExpectNoSystemTimerAfterDraining();
}

TEST_F(TimerStressTest, ConcurrentChecksCallEachTimerAtMostOnce) {
  std::vector<std::deque<OwningHandler>> perThread(2);
  std::atomic<bool> creating{true};

  // One checker runs checks directly, the other fires the armed system
  // timers as the system would.
  std::thread checkerA([&] {
    while (creating.load()) {
      Check();
    }
  });
  std::thread checkerB([&] {
    while (creating.load()) {
      if (!env_.Queue().Fire()) {
        std::this_thread::yield();
      }
    }
  });
  std::vector<std::thread> creators;
  for (auto& handlers : perThread) {
    creators.emplace_back([&handlers] { CreateAndDelete(handlers); });
  }
  for (std::thread& creator : creators) {
    creator.join();
  }
  creating.store(false);
  checkerA.join();
  checkerB.join();

  for (auto& handlers : perThread) {
    for (OwningHandler& handler : handlers) {
      handler.DeleteTimer();
    }
  }
  ExpectSoundHandlers(perThread);
  ExpectNoSystemTimerAfterDraining();
}

}  // namespace
