// The time-out of a host control instance, driven through the timers' test
// seam: a simulated clock that moves only when the test moves it, and a
// system timer queue whose one-shot timer runs the check when the test fires
// it. Each Fire() stands for the check that the system runs 150 s after the
// timer was armed, so the test moves the clock by 150 s before each one.
#include "wevlin/infrastructure/interop/HostControlInstance.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/HostCleanup.h"
#include "support/RecordingPropertyListener.h"
#include "support/StdoutCapture.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"
#include "wevlin/testing/ScriptedPage.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using interop::HostContentState;
using interop::HostControlInstance;
using interop::HostManager;
using interop::IHostServiceDescriptor;
using interop::TargetConfig;
using interop::internal::HostManagerTestPeer;
using wevlin_test::DestroyHostControlInstance;
using wevlin_test::ManualTimerQueue;
using wevlin_test::RecordingPropertyListener;
using wevlin_test::SimulatedClock;
using wevlin_test::StdoutCapture;
using wevlin_test::TimerEnvironmentScope;
using Strings = std::vector<std::string>;

const char kElapsed[] = "HostControlInstance::OnTimerElapsed\n";

// A system timer queue that arms through a ManualTimerQueue, but lets the
// simulated clock pass a second boundary while the first timer is being
// armed: the situation in which the due time was computed in one second and
// the check period starts in the next.
class LateArmingQueue : public interop::internal::SystemTimerQueue {
 public:
  LateArmingQueue(ManualTimerQueue& queue, SimulatedClock& clock) : queue_(queue), clock_(clock) {}

  void* Arm(unsigned int dueMs, void (*callback)()) override {
    if (!ticked_) {
      ticked_ = true;
      clock_.AdvanceSeconds(1);
    }
    return queue_.Arm(dueMs, callback);
  }

  void Disarm(void* handle) override { queue_.Disarm(handle); }

 private:
  ManualTimerQueue& queue_;
  SimulatedClock& clock_;
  bool ticked_ = false;
};

class HostControlInstanceTimeOutTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = HostManagerTestPeer::InstallFresh();
    instance_ = std::make_unique<HostControlInstance>(&page_);
    listener_ = std::make_unique<RecordingPropertyListener>(instance_.get());
    instance_->AddChangeListener(listener_.get());
  }

  void TearDown() override {
    DestroyInstance();
    HostManagerTestPeer::Restore(previousManager_);
  }

  void DestroyInstance() { DestroyHostControlInstance(instance_); }

  // Moves the clock on by `seconds` and runs the check of the armed system
  // timer; returns false when none was armed.
  bool CheckAfter(int seconds) {
    env_.Clock().AdvanceSeconds(seconds);
    return env_.Queue().Fire();
  }

  ManualTimerQueue& Queue() { return env_.Queue(); }

  TimerEnvironmentScope env_;
  ScriptedPage page_;
  TargetConfig target_{"main", "Main page", "https://app.example/start"};
  HostManager* previousManager_ = nullptr;
  std::unique_ptr<RecordingPropertyListener> listener_;
  std::unique_ptr<HostControlInstance> instance_;
};

TEST_F(HostControlInstanceTimeOutTest, DefaultTimeOutFiresAtTheSecondCheckWhileWaiting) {
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  EXPECT_EQ(Queue().ArmedPeriods(), std::vector<unsigned int>{150000U});

  StdoutCapture capture;
  // 150 s after arming, the clock equals the due time: not yet.
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::Waiting);
  EXPECT_EQ(Queue().ArmedPeriods(), (std::vector<unsigned int>{150000U, 150000U}));

  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
  EXPECT_EQ(listener_->States(), (Strings{"Navigating", "Waiting", "TimedOut"}));
  // A timer fires once; none is left, so nothing is armed any more.
  EXPECT_FALSE(Queue().IsArmed());
  EXPECT_FALSE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
}

TEST_F(HostControlInstanceTimeOutTest, DefaultTimeOutFiresAtTheSecondCheckWhileNavigating) {
  instance_->LaunchToTarget(&target_);
  StdoutCapture capture;
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(listener_->States(), (Strings{"Navigating", "TimedOut"}));
}

TEST_F(HostControlInstanceTimeOutTest, FiresAtTheFirstCheckWhenASecondPassedBeforeArming) {
  LateArmingQueue late(Queue(), env_.Clock());
  interop::internal::SystemTimerQueue* previous =
      interop::internal::SetSystemTimerQueueForTesting(&late);

  instance_->LaunchToTarget(&target_);  // due in this second, armed in the next
  page_.CompleteLoad();
  StdoutCapture capture;
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
  EXPECT_FALSE(Queue().IsArmed());

  interop::internal::SetSystemTimerQueueForTesting(previous);
}

TEST_F(HostControlInstanceTimeOutTest, ShorterIntervalFiresAtTheFirstCheck) {
  instance_->SetTimeOutInterval(5000);
  instance_->LaunchToTarget(&target_);
  StdoutCapture capture;
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
}

TEST_F(HostControlInstanceTimeOutTest, NewIntervalAppliesOnlyToLaterLaunches) {
  instance_->LaunchToTarget(&target_);
  instance_->SetTimeOutInterval(0);
  StdoutCapture capture;
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
}

class TimeOutElsewhereTest : public HostControlInstanceTimeOutTest,
                             public ::testing::WithParamInterface<HostContentState> {};

TEST_P(TimeOutElsewhereTest, OnlyDeletesTheTimer) {
  instance_->LaunchToTarget(&target_);
  instance_->SetContentState(GetParam());
  listener_->Clear();
  StdoutCapture capture;
  ASSERT_TRUE(CheckAfter(150));
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(instance_->GetContentState(), GetParam());
  EXPECT_TRUE(listener_->Names().empty());
  EXPECT_FALSE(Queue().IsArmed());
}

INSTANTIATE_TEST_SUITE_P(States, TimeOutElsewhereTest,
                         ::testing::Values(interop::NoContent, interop::TimedOut,
                                           interop::Initializing, interop::LoadedCanTalk,
                                           interop::LoadedNoTalk, interop::LoggedIn),
                         [](const ::testing::TestParamInfo<HostContentState>& info) {
                           return HostControlInstance::NameOfState(info.param);
                         });

TEST_F(HostControlInstanceTimeOutTest, LaunchingAgainDeletesTheOldTimerBeforeTheNewOne) {
  instance_->LaunchToTarget(&target_);
  EXPECT_EQ(Queue().ArmCount(), 1);
  EXPECT_EQ(Queue().DisarmCount(), 0);

  env_.Clock().AdvanceSeconds(100);
  instance_->LaunchToTarget(&target_);
  // The old timer was the only one: deleting it disarmed the system timer,
  // and the new one armed it afresh. Had the new timer been made first, the
  // system timer would have been left as it was.
  EXPECT_EQ(Queue().DisarmCount(), 1);
  EXPECT_EQ(Queue().ArmCount(), 2);
  EXPECT_EQ(Queue().PendingCount(), 1U);

  StdoutCapture capture;
  // 250 s after the first launch: the old due time has passed, the new one
  // is reached exactly. Nothing fires.
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
}

TEST_F(HostControlInstanceTimeOutTest, HandshakeDeletesTheTimer) {
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  instance_->WebSideStartHandShake();
  ASSERT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_FALSE(Queue().IsArmed());

  StdoutCapture capture;
  env_.Clock().AdvanceSeconds(1000);
  interop::internal::RunTimerCheckForTesting();
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
}

TEST_F(HostControlInstanceTimeOutTest, TimedOutIsLeftOnlyByANewLaunch) {
  instance_->LaunchToTarget(&target_);
  ASSERT_TRUE(CheckAfter(300));
  ASSERT_EQ(instance_->GetContentState(), interop::TimedOut);
  page_.ClearRecords();
  listener_->Clear();

  page_.CompleteLoad();
  instance_->WebSideStartHandShake();
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
  EXPECT_EQ(page_.Scripts(), Strings{"tavoInterop_Ping('0.9');"});

  instance_->LaunchToTarget(&target_);
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
  EXPECT_TRUE(Queue().IsArmed());
  EXPECT_EQ(listener_->States(), Strings{"Navigating"});
}

TEST_F(HostControlInstanceTimeOutTest, NotificationArrivesOnTheThreadThatRunsTheCheck) {
  instance_->LaunchToTarget(&target_);
  env_.Clock().AdvanceSeconds(300);
  std::thread::id checkThread;
  std::thread timerThread([&] {
    checkThread = std::this_thread::get_id();
    Queue().Fire();
  });
  timerThread.join();
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
  const std::vector<std::thread::id> threads = listener_->Threads();
  ASSERT_EQ(threads.size(), 2U);
  EXPECT_EQ(threads[0], std::this_thread::get_id());  // Navigating
  EXPECT_EQ(threads[1], checkThread);                 // TimedOut
}

TEST_F(HostControlInstanceTimeOutTest, InstancesShareOneSystemTimer) {
  ScriptedPage otherPage;
  auto other = std::make_unique<HostControlInstance>(&otherPage);
  instance_->LaunchToTarget(&target_);
  other->LaunchToTarget(&target_);
  EXPECT_EQ(Queue().ArmCount(), 1);

  StdoutCapture capture;
  ASSERT_TRUE(CheckAfter(150));
  ASSERT_TRUE(CheckAfter(150));
  EXPECT_EQ(capture.Text(), std::string(kElapsed) + kElapsed);
  EXPECT_EQ(instance_->GetContentState(), interop::TimedOut);
  EXPECT_EQ(other->GetContentState(), interop::TimedOut);
  EXPECT_FALSE(Queue().IsArmed());

  DestroyHostControlInstance(other);
}

TEST_F(HostControlInstanceTimeOutTest, DestroyedInstanceIsNeverTimedOut) {
  instance_->LaunchToTarget(&target_);
  DestroyInstance();
  EXPECT_FALSE(Queue().IsArmed());
  StdoutCapture capture;
  env_.Clock().AdvanceSeconds(1000);
  interop::internal::RunTimerCheckForTesting();
  EXPECT_EQ(capture.Text(), "");
}

// A listener on the application's thread that starts the handshake from
// inside the "Waiting" notification deletes the timer while it holds the
// notification lock. A time-out that fires at that moment on the timer thread
// must give way instead of waiting for the lock, or the two threads would
// wait for each other for ever.
TEST_F(HostControlInstanceTimeOutTest, TimeOutGivesWayToAListenerThatCancelsIt) {
  std::atomic<bool> checkStarted{false};
  std::thread timerThread;
  HostControlInstance* instance = instance_.get();
  listener_->SetHook([&](const std::string& name) {
    if (name != "ContentState" || instance->GetContentState() != interop::Waiting) return;
    env_.Clock().AdvanceSeconds(300);
    timerThread = std::thread([&] {
      checkStarted = true;
      Queue().Fire();
    });
    while (!checkStarted) std::this_thread::yield();
    // Give the check time to reach the notification lock.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    instance->WebSideStartHandShake();
  });

  StdoutCapture capture;
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  timerThread.join();
  listener_->SetHook(nullptr);

  EXPECT_EQ(capture.Text(), kElapsed);
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(listener_->CountState("TimedOut"), 0);
  EXPECT_FALSE(Queue().IsArmed());
}

}  // namespace
