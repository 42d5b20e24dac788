#include "wevlin/infrastructure/interop/Timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "support/StdoutCapture.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/IHandleTimerEvent.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::Timer;
using wevlin_test::SimulatedClock;
using wevlin_test::StdoutCapture;
using wevlin_test::TimerEnvironmentScope;

static_assert(std::has_virtual_destructor_v<Timer>);
static_assert(!std::is_copy_constructible_v<Timer>);
static_assert(!std::is_copy_assignable_v<Timer>);

// Counts its calls, appends itself to a shared call log if it has one, and
// runs an optional action inside the call.
class RecordingHandler final : public interop::IHandleTimerEvent {
 public:
  explicit RecordingHandler(std::vector<const RecordingHandler*>* callLog = nullptr)
      : callLog_(callLog) {}

  void OnTimerElapsed() override {
    ++calls;
    if (callLog_ != nullptr) {
      callLog_->push_back(this);
    }
    if (action) {
      action();
    }
  }

  int calls = 0;
  std::function<void()> action;

 private:
  std::vector<const RecordingHandler*>* callLog_;
};

// Every test runs on a simulated clock that starts at 1700000000 s, so the
// timers' millisecond clock reads 1700000000000 mod 2^32 = 3487918080, and on
// a queue that the test fires by hand.
class TimerTest : public ::testing::Test {
 protected:
  SimulatedClock& Clock() { return env_.Clock(); }
  wevlin_test::ManualTimerQueue& Queue() { return env_.Queue(); }

  TimerEnvironmentScope env_;
  RecordingHandler handler_;
};

TEST_F(TimerTest, GettersReturnHandlerAndDueTime) {
  Timer timer(&handler_, 5000);
  EXPECT_EQ(timer.GetHandler(), &handler_);
  EXPECT_EQ(timer.GetDueTime(), 3487923080U);
}

TEST_F(TimerTest, ClockIsWholeSecondsTimesThousandCutTo32Bits) {
  Clock().SetNowSeconds(0);
  EXPECT_EQ(Timer(&handler_, 0).GetDueTime(), 0U);
  Clock().SetNowSeconds(1);
  EXPECT_EQ(Timer(&handler_, 0).GetDueTime(), 1000U);
  // 4294967 s is 4294967000 ms, 296 ms short of 2^32.
  Clock().SetNowSeconds(4294967);
  EXPECT_EQ(Timer(&handler_, 0).GetDueTime(), 4294967000U);
  Clock().SetNowSeconds(4294968);
  EXPECT_EQ(Timer(&handler_, 0).GetDueTime(), 704U);
}

TEST_F(TimerTest, DueTimeWrapsAroundIn32Bits) {
  Clock().SetNowSeconds(4294967);
  Timer timer(&handler_, 1000);
  EXPECT_EQ(timer.GetDueTime(), 704U);
}

TEST_F(TimerTest, NegativeIntervalGivesADueTimeInThePast) {
  Timer timer(&handler_, -1000);
  EXPECT_EQ(timer.GetDueTime(), 3487917080U);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
}

TEST_F(TimerTest, FirstTimerArmsTheSystemTimerWithTheCheckPeriod) {
  EXPECT_EQ(Queue().ArmCount(), 0);
  Timer timer(&handler_, 1);
  EXPECT_EQ(Queue().ArmCount(), 1);
  EXPECT_EQ(Queue().LastPeriod(), 150000U);
  EXPECT_TRUE(Queue().IsArmed());
  EXPECT_EQ(interop::internal::kTimerCheckPeriodMs, 150000U);
}

TEST_F(TimerTest, SecondTimerDoesNotArmAgain) {
  Timer first(&handler_, 1000);
  Timer second(&handler_, 400000);
  EXPECT_EQ(Queue().ArmCount(), 1);
  EXPECT_EQ(Queue().DisarmCount(), 0);
  EXPECT_EQ(Queue().PendingCount(), 1U);
}

TEST_F(TimerTest, DeletingTheLastTimerDisarmsAndTheCheckNeverRuns) {
  auto first = std::make_unique<Timer>(&handler_, -1000);
  auto second = std::make_unique<Timer>(&handler_, -1000);
  first.reset();
  EXPECT_EQ(Queue().DisarmCount(), 0);
  EXPECT_TRUE(Queue().IsArmed());
  second.reset();
  EXPECT_EQ(Queue().DisarmCount(), 1);
  EXPECT_FALSE(Queue().IsArmed());
  EXPECT_FALSE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
}

TEST_F(TimerTest, DueTimeEqualToNowDoesNotFireUntilTheNextCheck) {
  Timer timer(&handler_, 0);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  EXPECT_TRUE(Queue().IsArmed());
  Clock().AdvanceSeconds(1);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
}

TEST_F(TimerTest, DefaultTimeOutFiresAtTheSecondCheck) {
  Timer timer(&handler_, 150000);
  Clock().AdvanceSeconds(150);  // The first check, in the second of the due time.
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  Clock().AdvanceSeconds(150);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_FALSE(Queue().IsArmed());
}

TEST_F(TimerTest, CheckArmsAgainWhileTimersLive) {
  Timer timer(&handler_, 600000);
  Clock().AdvanceSeconds(150);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  EXPECT_TRUE(Queue().IsArmed());
  EXPECT_EQ(Queue().ArmedPeriods(), (std::vector<unsigned int>{150000, 150000}));
  // The fired one-shot timer is forgotten, not cancelled.
  EXPECT_EQ(Queue().DisarmCount(), 0);
}

TEST_F(TimerTest, SystemTimerStaysOffAfterTheLastTimerFired) {
  Timer timer(&handler_, 1000);
  Clock().AdvanceSeconds(2);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_FALSE(Queue().IsArmed());
  EXPECT_EQ(Queue().ArmCount(), 1);
  EXPECT_EQ(Queue().DisarmCount(), 0);
}

TEST_F(TimerTest, TimerFiresOnceEvenIfNotDeleted) {
  Timer timer(&handler_, -1000);
  ASSERT_TRUE(Queue().Fire());
  interop::internal::RunTimerCheckForTesting();
  Clock().AdvanceSeconds(1000);
  interop::internal::RunTimerCheckForTesting();
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_EQ(Queue().ArmCount(), 1);
}

TEST_F(TimerTest, NewTimerAfterTheLastFiredArmsAgain) {
  {
    Timer timer(&handler_, -1000);
    ASSERT_TRUE(Queue().Fire());
  }
  EXPECT_FALSE(Queue().IsArmed());
  Timer next(&handler_, 1000);
  EXPECT_EQ(Queue().ArmCount(), 2);
  EXPECT_TRUE(Queue().IsArmed());
}

TEST_F(TimerTest, CheckCallsOnlyTimersThatAreDue) {
  RecordingHandler late;
  Timer soon(&handler_, 1000);
  Timer later(&late, 400000);
  Clock().AdvanceSeconds(150);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_EQ(late.calls, 0);
  EXPECT_TRUE(Queue().IsArmed());
  Clock().AdvanceSeconds(150);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(late.calls, 0);
  Clock().AdvanceSeconds(150);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(late.calls, 1);
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_FALSE(Queue().IsArmed());
}

TEST_F(TimerTest, DeletedTimerIsNotCalled) {
  RecordingHandler kept;
  auto deleted = std::make_unique<Timer>(&handler_, -1000);
  Timer timer(&kept, -1000);
  deleted.reset();
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  EXPECT_EQ(kept.calls, 1);
}

TEST_F(TimerTest, CheckVisitsTimersInAddressOrder) {
  std::vector<const RecordingHandler*> callLog;
  std::vector<std::unique_ptr<RecordingHandler>> handlers;
  std::vector<std::unique_ptr<Timer>> timers;
  for (int i = 0; i < 6; ++i) {
    handlers.push_back(std::make_unique<RecordingHandler>(&callLog));
    timers.push_back(std::make_unique<Timer>(handlers.back().get(), -1000));
  }
  std::vector<const Timer*> byAddress;
  for (const auto& timer : timers) {
    byAddress.push_back(timer.get());
  }
  std::sort(byAddress.begin(), byAddress.end(), std::less<const Timer*>());
  std::vector<const RecordingHandler*> expected;
  for (const Timer* timer : byAddress) {
    expected.push_back(static_cast<const RecordingHandler*>(timer->GetHandler()));
  }

  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(callLog, expected);
}

// Three due timers; the handler of the first one in address order deletes its
// own timer. The check must go on with the other two and leave no timer live.
TEST_F(TimerTest, HandlerDeletingItsOwnTimerLeavesTheSetConsistent) {
  std::vector<const RecordingHandler*> callLog;
  RecordingHandler a(&callLog);
  RecordingHandler b(&callLog);
  RecordingHandler c(&callLog);
  std::unique_ptr<Timer> timers[] = {std::make_unique<Timer>(&a, -1000),
                                     std::make_unique<Timer>(&b, -1000),
                                     std::make_unique<Timer>(&c, -1000)};
  std::unique_ptr<Timer>* first = std::min_element(
      std::begin(timers), std::end(timers),
      [](const auto& x, const auto& y) { return std::less<const Timer*>()(x.get(), y.get()); });
  auto* selfDeleting = static_cast<RecordingHandler*>((*first)->GetHandler());
  selfDeleting->action = [first] { first->reset(); };

  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(a.calls, 1);
  EXPECT_EQ(b.calls, 1);
  EXPECT_EQ(c.calls, 1);
  ASSERT_EQ(callLog.size(), 3U);
  EXPECT_EQ(callLog.front(), selfDeleting);
  EXPECT_EQ(*first, nullptr);
  EXPECT_FALSE(Queue().IsArmed());

  // No timer is live any more: the next timer arms the system timer again,
  // and deleting it disarms it.
  const int arms = Queue().ArmCount();
  auto next = std::make_unique<Timer>(&a, 1000);
  EXPECT_EQ(Queue().ArmCount(), arms + 1);
  next.reset();
  EXPECT_FALSE(Queue().IsArmed());
}

TEST_F(TimerTest, EveryHandlerDeletingItsOwnTimer) {
  std::vector<std::unique_ptr<RecordingHandler>> handlers;
  std::vector<std::unique_ptr<Timer>> timers(5);
  for (std::size_t i = 0; i < timers.size(); ++i) {
    handlers.push_back(std::make_unique<RecordingHandler>());
    std::unique_ptr<Timer>* slot = &timers[i];
    handlers.back()->action = [slot] { slot->reset(); };
    timers[i] = std::make_unique<Timer>(handlers.back().get(), -1000);
  }
  ASSERT_TRUE(Queue().Fire());
  for (std::size_t i = 0; i < timers.size(); ++i) {
    EXPECT_EQ(handlers[i]->calls, 1) << "handler " << i;
    EXPECT_EQ(timers[i], nullptr) << "timer " << i;
  }
  EXPECT_FALSE(Queue().IsArmed());
}

TEST_F(TimerTest, HandlerDeletingALaterTimerOfTheCopyPreventsItsCall) {
  RecordingHandler other;
  auto mine = std::make_unique<Timer>(&handler_, -1000);
  auto theirs = std::make_unique<Timer>(&other, -1000);
  if (std::less<Timer*>()(theirs.get(), mine.get())) {
    // Make sure the deleting handler is visited first.
    mine.swap(theirs);
  }
  RecordingHandler* firstHandler = static_cast<RecordingHandler*>(mine->GetHandler());
  RecordingHandler* secondHandler = static_cast<RecordingHandler*>(theirs->GetHandler());
  firstHandler->action = [&theirs] { theirs.reset(); };

  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(firstHandler->calls, 1);
  EXPECT_EQ(secondHandler->calls, 0);
  EXPECT_FALSE(Queue().IsArmed());
}

TEST_F(TimerTest, TimerCreatedByAHandlerWaitsForTheNextCheck) {
  RecordingHandler created;
  std::unique_ptr<Timer> timer;
  handler_.action = [&timer, &created] { timer = std::make_unique<Timer>(&created, -1000); };
  Timer first(&handler_, -1000);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_EQ(created.calls, 0);
  EXPECT_TRUE(Queue().IsArmed());
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(created.calls, 1);
  EXPECT_EQ(handler_.calls, 1);
}

// A check that starts while another is calling a timer's handler (here: from
// inside that handler) skips that timer: a timer fires once.
TEST_F(TimerTest, NestedCheckSkipsTheTimerWhoseCallIsInProgress) {
  RecordingHandler other;
  int nestedChecks = 0;
  handler_.action = [&nestedChecks] {
    if (nestedChecks++ == 0) {
      interop::internal::RunTimerCheckForTesting();
    }
  };
  Timer first(&handler_, -1000);
  Timer second(&other, -1000);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(nestedChecks, 1);
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_EQ(other.calls, 1);
  EXPECT_FALSE(Queue().IsArmed());
}

// The handler replaces its own timer by a new one at the very same address.
// The check must not mistake the new timer for the one it has just called.
TEST_F(TimerTest, TimerRecreatedAtTheSameAddressByItsHandlerStaysLive) {
  RecordingHandler successor;
  alignas(Timer) unsigned char storage[sizeof(Timer)];
  auto* timer = new (storage) Timer(&handler_, -1000);
  handler_.action = [&timer, &storage, &successor] {
    timer->~Timer();
    timer = new (storage) Timer(&successor, -1000);
  };
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
  EXPECT_EQ(successor.calls, 0);
  EXPECT_EQ(static_cast<void*>(timer), static_cast<void*>(storage));
  EXPECT_TRUE(Queue().IsArmed());

  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(successor.calls, 1);
  EXPECT_EQ(handler_.calls, 1);
  timer->~Timer();
}

TEST_F(TimerTest, ThrowingHandlerIsLoggedAndTheCheckGoesOn) {
  RecordingHandler thrower;
  RecordingHandler other;
  thrower.action = [] { throw std::runtime_error("boom"); };
  Timer first(&thrower, -1000);
  Timer second(&other, -1000);
  {
    StdoutCapture capture;
    ASSERT_TRUE(Queue().Fire());
    EXPECT_EQ(capture.Text(), "Timer - caught exception from OnTimerElapsed\n");
  }
  EXPECT_EQ(thrower.calls, 1);
  EXPECT_EQ(other.calls, 1);
  EXPECT_FALSE(Queue().IsArmed());
  interop::internal::RunTimerCheckForTesting();
  EXPECT_EQ(thrower.calls, 1);
}

TEST_F(TimerTest, FailureToArmTheSystemTimerIsLogged) {
  Queue().SetArmFails(true);
  {
    StdoutCapture capture;
    Timer timer(&handler_, 1000);
    EXPECT_EQ(capture.Text(), "Timer - could not arm the system timer\n");
    EXPECT_FALSE(Queue().IsArmed());
    EXPECT_EQ(Queue().ArmCount(), 1);
  }
  EXPECT_EQ(Queue().DisarmCount(), 0);
  Queue().SetArmFails(false);
  Timer timer(&handler_, 1000);
  EXPECT_TRUE(Queue().IsArmed());
}

TEST_F(TimerTest, TimerWithoutHandlerExpiresSilently) {
  Timer timer(nullptr, -1000);
  EXPECT_EQ(timer.GetHandler(), nullptr);
  ASSERT_TRUE(Queue().Fire());
  EXPECT_FALSE(Queue().IsArmed());
}

TEST_F(TimerTest, CheckWithoutTimersArmsNothing) {
  interop::internal::RunTimerCheckForTesting();
  EXPECT_EQ(Queue().ArmCount(), 0);
  EXPECT_EQ(Queue().DisarmCount(), 0);
}

// The comparison is a plain unsigned one on the wrapping clock.
TEST_F(TimerTest, DueTimeBeyondTheWrapFiresOnceTheClockHasWrappedPastIt) {
  Clock().SetNowSeconds(4294967);  // 4294967000 ms
  Timer timer(&handler_, 1000);    // due at 704 after the wrap
  Clock().AdvanceSeconds(1);       // 704: equal, not yet
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  Clock().AdvanceSeconds(1);  // 1704
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
}

TEST_F(TimerTest, ClockWrappingPastADueTimeBeforeTheWrapDoesNotFire) {
  Clock().SetNowSeconds(4294966);  // 4294966000 ms
  Timer timer(&handler_, 0);       // due at 4294966000
  Clock().AdvanceSeconds(2);       // 704 after the wrap: smaller than the due time
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  EXPECT_TRUE(Queue().IsArmed());
  Clock().SetNowSeconds(4294966);  // 4294966000: equal
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 0);
  Clock().AdvanceSeconds(1);  // 4294967000: past it
  ASSERT_TRUE(Queue().Fire());
  EXPECT_EQ(handler_.calls, 1);
}

TEST(TimerEnvironmentTest, CheckPeriodForTestingAppliesToLaterArmsAndZeroRestores) {
  TimerEnvironmentScope env;
  RecordingHandler handler;
  EXPECT_EQ(interop::internal::CurrentCheckPeriodMs(), 150000U);
  EXPECT_EQ(interop::internal::SetCheckPeriodForTesting(50), 0U);
  EXPECT_EQ(interop::internal::CurrentCheckPeriodMs(), 50U);
  Timer timer(&handler, 400000);
  EXPECT_EQ(env.Queue().LastPeriod(), 50U);
  EXPECT_EQ(interop::internal::SetCheckPeriodForTesting(0), 50U);
  EXPECT_EQ(interop::internal::CurrentCheckPeriodMs(), 150000U);
  ASSERT_TRUE(env.Queue().Fire());
  EXPECT_EQ(env.Queue().ArmedPeriods(), (std::vector<unsigned int>{50, 150000}));
}

TEST(TimerEnvironmentTest, SettersReturnWhatWasInstalledBefore) {
  namespace internal = interop::internal;
  {
    TimerEnvironmentScope env;
    EXPECT_EQ(&internal::CurrentTimerClock(), &env.Clock());
    EXPECT_EQ(&internal::CurrentSystemTimerQueue(), &env.Queue());

    SimulatedClock otherClock(5);
    wevlin_test::ManualTimerQueue otherQueue;
    EXPECT_EQ(internal::SetTimerClockForTesting(&otherClock), &env.Clock());
    EXPECT_EQ(internal::SetSystemTimerQueueForTesting(&otherQueue), &env.Queue());
    EXPECT_EQ(internal::CurrentTimerClock().NowSeconds(), 5);
    EXPECT_EQ(&internal::CurrentSystemTimerQueue(), &otherQueue);
    EXPECT_EQ(internal::SetTimerClockForTesting(&env.Clock()), &otherClock);
    EXPECT_EQ(internal::SetSystemTimerQueueForTesting(&env.Queue()), &otherQueue);
  }
  // The scope put the platform's back: nothing is installed for testing.
  EXPECT_EQ(internal::SetTimerClockForTesting(nullptr), nullptr);
  EXPECT_EQ(internal::SetSystemTimerQueueForTesting(nullptr), nullptr);
}

TEST(TimerEnvironmentTest, PlatformClockIsTheWallClock) {
  const std::time_t before = std::time(nullptr);
  const std::int64_t now = interop::internal::CurrentTimerClock().NowSeconds();
  const std::time_t after = std::time(nullptr);
  EXPECT_GE(now, static_cast<std::int64_t>(before));
  EXPECT_LE(now, static_cast<std::int64_t>(after));
}

TEST(TimerEnvironmentTest, ScopesNestAndRestoreInOrder) {
  namespace internal = interop::internal;
  TimerEnvironmentScope outer(100);
  {
    TimerEnvironmentScope inner(200);
    EXPECT_EQ(internal::CurrentTimerClock().NowSeconds(), 200);
  }
  EXPECT_EQ(internal::CurrentTimerClock().NowSeconds(), 100);
  EXPECT_EQ(&internal::CurrentSystemTimerQueue(), &outer.Queue());
}

}  // namespace
