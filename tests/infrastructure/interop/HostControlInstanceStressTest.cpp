// Many host control instances launched, loaded, handshaken and timed out on
// several application threads at once, while other threads run the timers'
// checks as the system timer thread would. The clock is simulated: a thread
// that waits for a time-out moves it just past its own due time, so every
// other instance's time-out may fire in the middle of whatever it is doing.
//
// Run it under ThreadSanitizer too (label "threads").
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/CountingService.h"
#include "support/HostCleanup.h"
#include "support/RecordingPropertyListener.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"
#include "wevlin/testing/ScriptedPage.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using interop::HostAPI;
using interop::HostContentState;
using interop::HostControlInstance;
using interop::HostManager;
using interop::IHostServiceDescriptor;
using interop::TargetConfig;
using interop::internal::HostManagerTestPeer;
using wevlin_test::CountingService;
using wevlin_test::DestroyHostControlInstance;
using wevlin_test::RecordingPropertyListener;
using wevlin_test::RestoreHostManager;
using wevlin_test::TimerEnvironmentScope;

constexpr int kThreads = 8;
constexpr int kInstancesPerThread = 4;
constexpr int kRounds = 200;
constexpr int kMinChurnInstances = 300;
// How long one wait for a time-out may take before the test gives up on it.
constexpr std::chrono::seconds kWaitLimit(30);

// Counts the library's log lines by text. The library calls a sink from one
// thread at a time; the lock makes the counts readable from any thread.
class LogCounter {
 public:
  LogCounter() {
    previous_ = base::SetLogSink([this](const std::string& line) {
      std::lock_guard<std::mutex> lock(mutex_);
      ++counts_[line];
    });
  }
  ~LogCounter() { base::SetLogSink(previous_); }
  LogCounter(const LogCounter&) = delete;
  LogCounter& operator=(const LogCounter&) = delete;

  int Count(const std::string& line) const {
    std::lock_guard<std::mutex> lock(mutex_);
    auto found = counts_.find(line);
    return found == counts_.end() ? 0 : found->second;
  }

  int Total() const {
    std::lock_guard<std::mutex> lock(mutex_);
    int total = 0;
    for (const auto& entry : counts_) total += entry.second;
    return total;
  }

 private:
  base::LogSink previous_;
  mutable std::mutex mutex_;
  std::map<std::string, int> counts_;
};

// One browser control with its page, instance, listener and what its thread
// observed.
// Members are destroyed bottom-up: the API before the instance, the instance
// before the listener that hears its "InstanceDestroyed", the page last.
struct Slot {
  ScriptedPage page;
  std::unique_ptr<RecordingPropertyListener> listener;
  std::unique_ptr<HostControlInstance> instance;
  std::unique_ptr<HostAPI> api;
  int launches = 0;
  int handshakesThatTalked = 0;  // cycles that ended in LoadedCanTalk
  int handshakesTooLate = 0;     // cycles whose time-out won over the handshake
  int failedHandshakes = 0;      // cycles that ended in LoadedNoTalk
  int failingPingCycles = 0;
  int waitsForTimeOut = 0;
  int cyclesEndingTimedOut = 0;
};

class HostControlInstanceStressTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = HostManagerTestPeer::InstallFresh();
    manager_ = HostManager::TheInstance();
    manager_->RegisterService(new CountingService("tavo.stress.One.host", "_2014_07"));
    manager_->RegisterService(new CountingService("tavo.stress.Two.host", "_2014_10"));
  }

  void TearDown() override { RestoreHostManager(previousManager_); }

  // Moves the simulated clock forward to `seconds`, never backwards, however
  // many threads ask at once.
  void MoveClockTo(std::int64_t seconds) {
    std::lock_guard<std::mutex> lock(clockMutex_);
    if (env_.Clock().NowSeconds() < seconds) env_.Clock().SetNowSeconds(seconds);
  }

  // Launches `slot` and returns the clock second just past its due time.
  std::int64_t Launch(Slot& slot) {
    slot.instance->LaunchToTarget(&target_);
    ++slot.launches;
    const auto intervalSeconds =
        static_cast<std::int64_t>(slot.instance->GetTimeOutInterval()) / 1000;
    return env_.Clock().NowSeconds() + intervalSeconds + 1;
  }

  // Waits until the time-out of `slot` has fired, moving the clock past
  // `dueSecond` so that the next check fires it.
  void WaitForTimeOut(Slot& slot, std::int64_t dueSecond) {
    ++slot.waitsForTimeOut;
    MoveClockTo(dueSecond);
    const auto limit = std::chrono::steady_clock::now() + kWaitLimit;
    while (slot.instance->GetContentState() != interop::TimedOut) {
      if (std::chrono::steady_clock::now() > limit) {
        ADD_FAILURE() << "time-out never came; state "
                      << HostControlInstance::NameOfState(slot.instance->GetContentState());
        return;
      }
      std::this_thread::sleep_for(std::chrono::microseconds(20));
    }
  }

  // Records how a cycle that tried a handshake ended.
  void Tally(Slot& slot, bool pageFails) {
    switch (slot.instance->GetContentState()) {
      case interop::LoadedCanTalk:
        EXPECT_FALSE(pageFails);
        ++slot.handshakesThatTalked;
        break;
      case interop::LoadedNoTalk:
        EXPECT_TRUE(pageFails);
        ++slot.failedHandshakes;
        break;
      case interop::TimedOut:
        ++slot.handshakesTooLate;
        ++slot.cyclesEndingTimedOut;
        break;
      default:
        ADD_FAILURE() << "cycle ended in "
                      << HostControlInstance::NameOfState(slot.instance->GetContentState());
    }
  }

  // One cycle of one instance; `kind` picks the course of events. The
  // yields between the steps give the checks a chance to come in between.
  void Cycle(Slot& slot, int kind) {
    switch (kind) {
      case 0: {  // load, then the page starts the handshake
        Launch(slot);
        std::this_thread::yield();
        slot.page.CompleteLoad();
        std::this_thread::yield();
        slot.instance->WebSideStartHandShake();
        Tally(slot, false);
        break;
      }
      case 1: {  // the page starts the handshake before the load completes
        Launch(slot);
        std::this_thread::yield();
        EXPECT_EQ(slot.api->tavoHost_WebSideStartHandShake(), "");
        slot.page.CompleteLoad();
        Tally(slot, false);
        break;
      }
      case 2: {  // the page never starts the handshake
        const std::int64_t due = Launch(slot);
        slot.page.CompleteLoad();
        WaitForTimeOut(slot, due);
        ++slot.cyclesEndingTimedOut;
        break;
      }
      case 3: {  // launched twice, then a page whose ping fails
        Launch(slot);
        std::this_thread::yield();
        Launch(slot);
        slot.page.Fail("tavoInterop_Ping", ScriptedPage::ScriptException("gone", "stress"));
        ++slot.failingPingCycles;
        slot.page.CompleteLoad();
        std::this_thread::yield();
        slot.instance->WebSideStartHandShake();
        slot.page.Heal("tavoInterop_Ping");
        Tally(slot, true);
        break;
      }
    }
  }

  TimerEnvironmentScope env_;
  TargetConfig target_{"stress", "Stress", "https://app.example/stress"};
  std::mutex clockMutex_;
  HostManager* previousManager_ = nullptr;
  HostManager* manager_ = nullptr;
};

TEST_F(HostControlInstanceStressTest, LaunchesHandshakesAndTimeOutsOnManyThreads) {
  LogCounter log;
  std::vector<std::unique_ptr<Slot>> slots;
  const unsigned int intervals[] = {150000U, 5000U, 0U, 150000U};
  for (int i = 0; i < kThreads * kInstancesPerThread; ++i) {
    auto slot = std::make_unique<Slot>();
    slot->page.WebServiceList = "[{\"FQN\": \"page.Svc.client\", \"SvcVersion\": \"1\"}]";
    slot->instance = std::make_unique<HostControlInstance>(&slot->page);
    slot->instance->SetTimeOutInterval(intervals[i % 4]);
    slot->listener = std::make_unique<RecordingPropertyListener>(slot->instance.get());
    slot->instance->AddChangeListener(slot->listener.get());
    slot->api = std::make_unique<HostAPI>(slot->instance.get());
    slots.push_back(std::move(slot));
  }

  std::atomic<bool> stop{false};
  std::atomic<int> checksFired{0};
  // The system timer: runs the check whenever it is armed.
  std::thread firing([&] {
    while (!stop.load()) {
      if (env_.Queue().Fire()) {
        ++checksFired;
      } else {
        std::this_thread::yield();
      }
    }
  });
  // Extra checks at any moment, concurrent with the armed one.
  std::thread checking([&] {
    while (!stop.load()) {
      interop::internal::RunTimerCheckForTesting();
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  });

  std::atomic<int> workersRunning{kThreads};
  std::vector<std::thread> workers;
  for (int t = 0; t < kThreads; ++t) {
    workers.emplace_back([this, t, &slots, &workersRunning] {
      for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kInstancesPerThread; ++i) {
          Slot& slot = *slots[static_cast<std::size_t>(t * kInstancesPerThread + i)];
          Cycle(slot, (round + i + t) % 4);
        }
      }
      --workersRunning;
    });
  }

  // Meanwhile this thread creates, launches and destroys short-lived
  // instances, so that destructions meet running time-outs. Each one moves
  // the clock on by a second, which keeps making the workers' short
  // time-outs due in the middle of their cycles.
  int churnTimedOut = 0;
  int churned = 0;
  for (int i = 0; i < kMinChurnInstances || workersRunning.load() > 0; ++i, ++churned) {
    ScriptedPage page;
    auto instance = std::make_unique<HostControlInstance>(&page);
    RecordingPropertyListener listener(instance.get());
    instance->AddChangeListener(&listener);
    instance->SetTimeOutInterval(0);
    instance->LaunchToTarget(&target_);
    MoveClockTo(env_.Clock().NowSeconds() + 1);
    if (i % 2 == 0) std::this_thread::yield();
    DestroyHostControlInstance(instance);
    churnTimedOut += listener.CountState("TimedOut");
    const std::vector<std::string> names = listener.Names();
    EXPECT_EQ(std::count(names.begin(), names.end(), "InstanceDestroyed"), 1);
    EXPECT_TRUE(!names.empty() && names.back() == "InstanceDestroyed");
  }

  for (std::thread& worker : workers) worker.join();
  stop = true;
  firing.join();
  checking.join();

  // Every cycle ended without a timer, so nothing may stay armed once the
  // checks that are still pending have run.
  int drained = 0;
  while (env_.Queue().Fire()) {
    ASSERT_LT(++drained, 1000000) << "a timer is still alive";
  }
  EXPECT_FALSE(env_.Queue().IsArmed());

  int launches = 0;
  int timedOutNotifications = churnTimedOut;
  int pingFailures = 0;
  for (const auto& slot : slots) {
    const HostContentState state = slot->instance->GetContentState();
    EXPECT_TRUE(state == interop::LoadedCanTalk || state == interop::LoadedNoTalk ||
                state == interop::TimedOut)
        << HostControlInstance::NameOfState(state);
    const int cycles = slot->handshakesThatTalked + slot->handshakesTooLate +
                       slot->failedHandshakes + slot->waitsForTimeOut;
    EXPECT_EQ(cycles, kRounds);
    EXPECT_EQ(slot->waitsForTimeOut, kRounds / 4);
    EXPECT_EQ(slot->failingPingCycles, kRounds / 4);
    // Every handshake that talked, and only those, announced the start.
    EXPECT_EQ(static_cast<int>(slot->page.CallsOf("tavoInterop_WebEvent").size()),
              slot->handshakesThatTalked);
    // Each cycle that ended timed out saw at least one time-out of its own.
    const int timedOut = slot->listener->CountState("TimedOut");
    EXPECT_GE(timedOut, slot->cyclesEndingTimedOut);
    EXPECT_EQ(slot->listener->Count("InstanceDestroyed"), 0);
    timedOutNotifications += timedOut;
    launches += slot->launches;
    // A failing page fails the ping of its load, and of its handshake when
    // the handshake was not too late.
    pingFailures += slot->failingPingCycles + slot->failedHandshakes;
  }
  launches += churned;

  const int elapsed = log.Count("HostControlInstance::OnTimerElapsed");
  EXPECT_LE(timedOutNotifications, elapsed);
  EXPECT_LE(elapsed, launches);
  EXPECT_EQ(log.Count("Caught exception running tavoInterop_Ping"), pingFailures);
  EXPECT_EQ(log.Total(), elapsed + pingFailures);
  EXPECT_GT(checksFired.load(), 0);

  // How the races went this time, for the XML report.
  int lostHandshakes = 0;
  for (const auto& slot : slots) lostHandshakes += slot->handshakesTooLate;
  RecordProperty("timeOutsElapsed", elapsed);
  RecordProperty("handshakesLostToTheTimeOut", lostHandshakes);
  RecordProperty("checksFired", checksFired.load());

  for (auto& slot : slots) {
    slot->api.reset();
    DestroyHostControlInstance(slot->instance);
  }
}

}  // namespace
