// The life of hosted content beyond one page: a page that never starts the
// handshake runs into the time-out, and a second, different page (reached by
// the page's own navigation or by a new launch) runs the handshake again.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "support/BrowserFixture.h"
#include "support/PageFiles.h"
#include "support/SimulatedClock.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionProxy01.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace version03 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03;
using wevlin_e2e::PageFiles;
using wevlin_test::StdoutCapture;
using Strings = std::vector<std::string>;
using namespace std::chrono_literals;

// The system timer thread may still be finishing a check when a test ends,
// so the simulated clock is never destroyed.
wevlin_test::SimulatedClock& SharedClock() {
  static auto* clock = new wevlin_test::SimulatedClock();
  return *clock;
}

class ContentLifecycleTest : public wevlin_e2e::BrowserFixture {
 protected:
  // Returns "FQN version" of every service the page announced, in order.
  Strings PageServices() {
    Strings services;
    const auto* known = instance_->GetKnownWebSideServices();
    for (int i = 0; i < known->GetSize(); ++i) {
      services.push_back(known->GetAt(i)->GetFQN() + " " + known->GetAt(i)->GetSvcVersion());
    }
    return services;
  }

  // Registers page `pageName` as target `id` and returns it.
  interop::TargetConfig* Target(const std::string& id, const std::string& pageName) {
    HostManager* manager = HostManager::TheInstance();
    manager->RegisterTargetConfig(
        new interop::TargetConfig(id, pageName, PageFiles::Url(pageName)));
    return manager->GetTargetConfig(id);
  }

  const Strings kHandshakePageServices = {"tavo.e2e.Echo.client _2014_07",
                                          "tavo.e2e.Inspect.client _2014_07",
                                          "tavo.e2e.Failing.client _2014_07"};
  const Strings kServicesPageServices = {
      "tavo.e2e.Echo.client _2014_07", "tavo.e2e.Inspect.client _2014_07",
      "tavo.e2e.Failing.client _2014_07",
      "tavo.wevlin.infrastructure.services.version.TestVersionSvc _2014_03",
      "tavo.wevlin.infrastructure.services.session.Session.client _2014_07"};
};

// The time-out on the product's system timer thread, with the timers' clock
// simulated and their check period cut to 20 ms: the time-out interval and
// the strict due-time comparison stay those of the product, but the test
// moves the clock instead of waiting 150 s or more.
class TimeOutTest : public ContentLifecycleTest {
 protected:
  void SetUp() override {
    previousClock_ = interop::internal::SetTimerClockForTesting(&clock_);
    previousPeriod_ = interop::internal::SetCheckPeriodForTesting(20);
    ContentLifecycleTest::SetUp();
  }

  void TearDown() override {
    ContentLifecycleTest::TearDown();
    interop::internal::SetCheckPeriodForTesting(previousPeriod_);
    interop::internal::SetTimerClockForTesting(previousClock_);
  }

  wevlin_test::SimulatedClock& clock_ = SharedClock();

 private:
  interop::internal::TimerClock* previousClock_ = nullptr;
  unsigned int previousPeriod_ = 0;
};

TEST_F(TimeOutTest, PageThatNeverStartsTheHandshakeTimesOut) {
  EXPECT_EQ(instance_->GetTimeOutInterval(), 150000.0);
  std::string log;
  bool timedOut = false;
  bool stillWaitingAtTheDueTime = false;
  {
    StdoutCapture capture;
    Launch("silent.html");
    ASSERT_TRUE(WaitForState(HostContentState::Waiting));
    // The load completion pinged the page, which answered.
    ASSERT_TRUE(control_->RunUntil(
        [&] { return instance_->GetWebSideVersion() == "silent-page-1"; }, kWait));
    // At the due time itself the check does not fire yet (it compares
    // strictly); many checks run in these 300 ms.
    clock_.AdvanceSeconds(150);
    stillWaitingAtTheDueTime = !control_->RunUntil(
        [&] { return instance_->GetContentState() != HostContentState::Waiting; }, 300ms);
    clock_.AdvanceSeconds(1);
    timedOut = WaitForState(HostContentState::TimedOut);
    log = capture.Text();
  }
  EXPECT_TRUE(stillWaitingAtTheDueTime);
  ASSERT_TRUE(timedOut) << HostControlInstance::NameOfState(instance_->GetContentState());
  EXPECT_EQ(log, "HostControlInstance::OnTimerElapsed\n");
  EXPECT_EQ(listener_->States(), (Strings{"Navigating", "Waiting", "TimedOut"}));
  // The time-out is announced on the system timer thread, the rest on the
  // application's thread.
  const std::vector<std::thread::id> threads = listener_->Threads();
  const Strings names = listener_->Names();
  ASSERT_EQ(names.back(), "ContentState");
  EXPECT_NE(threads.back(), std::this_thread::get_id());
  for (std::size_t i = 0; i + 1 < threads.size(); ++i) {
    EXPECT_EQ(threads[i], std::this_thread::get_id()) << names[i];
  }

  // A handshake the page starts too late is ignored.
  Eval("silent.startHandshake()");
  ASSERT_TRUE(control_->RunUntil([&] { return Eval("silent.settled()") == "resolved"; }, kWait))
      << Eval("silent.settled()");
  EXPECT_EQ(instance_->GetContentState(), HostContentState::TimedOut);
  EXPECT_EQ(listener_->Count("ContentState"), 3);

  // Only a new launch leaves TimedOut.
  listener_->Clear();
  instance_->LaunchToTarget(Target("second", "handshake.html"));
  ASSERT_TRUE(WaitForState(HostContentState::LoggedIn))
      << HostControlInstance::NameOfState(instance_->GetContentState());
  EXPECT_EQ(listener_->States(),
            (Strings{"Navigating", "Waiting", "Initializing", "LoadedCanTalk", "LoggedIn"}));
  EXPECT_EQ(PageServices(), kHandshakePageServices);
}

TEST_F(ContentLifecycleTest, PageNavigatingToAnotherPageRunsTheHandshakeAgain) {
  LaunchAndLogIn("handshake.html");
  EXPECT_EQ(PageServices(), kHandshakePageServices);
  listener_->Clear();
  Eval("location.href = " + JsString(PageFiles::Url("services.html")));
  EXPECT_TRUE(control_->RunUntil([&] { return listener_->States().size() == 3; }, kWait));
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk", "LoggedIn"}));
  EXPECT_EQ(Eval("document.title"), "wevlin standard services page");
  // The new page's services replaced the old page's.
  EXPECT_EQ(PageServices(), kServicesPageServices);
  version03::TestVersionProxy01 proxy(instance_.get());
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
  EXPECT_TRUE(proxy.GetClientServiceVersion().Result);
  // The host's own target did not change: the page moved by itself.
  EXPECT_EQ(instance_->GetActiveTarget()->GetId(), "e2e");
}

TEST_F(ContentLifecycleTest, LaunchToASecondTargetRunsTheHandshakeAgain) {
  LaunchAndLogIn("handshake.html");
  listener_->Clear();
  interop::TargetConfig* second = Target("second", "services.html");
  instance_->LaunchToTarget(second);
  ASSERT_TRUE(WaitForState(HostContentState::LoggedIn))
      << HostControlInstance::NameOfState(instance_->GetContentState());
  EXPECT_EQ(listener_->States(),
            (Strings{"Navigating", "Waiting", "Initializing", "LoadedCanTalk", "LoggedIn"}));
  EXPECT_EQ(instance_->GetActiveTarget(), second);
  EXPECT_EQ(Eval("document.title"), "wevlin standard services page");
  EXPECT_EQ(PageServices(), kServicesPageServices);
  EXPECT_TRUE(version03::TestVersionProxy01(instance_.get()).GetClientServiceVersion().Result);
}

}  // namespace
