// Construction, content states, handshake and destruction of the host control
// instance, driven through a scripted page. Time-outs are in
// HostControlInstanceTimeOutTest.cpp, the exchange of calls and lists with the
// page in HostControlInstanceExchangeTest.cpp.
#include "wevlin/infrastructure/interop/HostControlInstance.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "support/CountingService.h"
#include "support/HostCleanup.h"
#include "support/RecordingPropertyListener.h"
#include "support/StdoutCapture.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
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
using wevlin_test::CountingService;
using wevlin_test::DestroyHostControlInstance;
using wevlin_test::RecordingPropertyListener;
using wevlin_test::RestoreHostManager;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;
using wevlin_test::TimerEnvironmentScope;
using Strings = std::vector<std::string>;

static_assert(std::has_virtual_destructor_v<HostControlInstance>);
static_assert(std::is_base_of_v<interop::IHostControlInstance, HostControlInstance>);
static_assert(std::is_base_of_v<interop::BaseObservableObject, HostControlInstance>);
static_assert(
    std::is_base_of_v<base::IListChangeListener<IHostServiceDescriptor*>, HostControlInstance>);
static_assert(std::is_base_of_v<interop::IWebControl::ILoadObserver, HostControlInstance>);
static_assert(std::is_base_of_v<interop::IHandleTimerEvent, HostControlInstance>);

const char kPing[] = "tavoInterop_Ping('0.9');";
const char kRequestList[] = "tavoInterop_RequestWebServiceList();";
const char kStartupEvent[] =
    "tavoInterop_WebEvent('{\"FQN\": "
    "\"tavo.wevlin.infrastructure.services.startup.StartupNotification.host\", "
    "\"SvcVersion\": \"_2014_02\"}','');";

std::string HostList(const std::string& listJson) {
  return "tavoInterop_HostServiceListUpdate('Add','" + listJson + "');";
}

// The script lines of a successful handshake with two empty host lists.
Strings EmptyHandshake() {
  return {kPing, HostList("[]"), HostList("[]"), kRequestList, kStartupEvent};
}

const HostContentState kAllStates[] = {
    interop::NoContent,    interop::Navigating,    interop::Waiting,      interop::TimedOut,
    interop::Initializing, interop::LoadedCanTalk, interop::LoadedNoTalk, interop::LoggedIn};

// Every test gets a fresh host manager, a simulated clock and a manual timer
// queue (so no real timer ever runs), a scripted page, and an instance on that
// page whose property changes a RecordingPropertyListener records.
class HostControlInstanceLifecycleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = HostManagerTestPeer::InstallFresh();
    manager_ = HostManager::TheInstance();
    instance_ = std::make_unique<HostControlInstance>(&page_);
    listener_ = std::make_unique<RecordingPropertyListener>(instance_.get());
    instance_->AddChangeListener(listener_.get());
  }

  void TearDown() override {
    DestroyInstance();
    RestoreHostManager(previousManager_);
  }

  // Destroys the instance, then releases what it leaves alive on purpose: the
  // list of services registered on it alone, and those services.
  void DestroyInstance() { DestroyHostControlInstance(instance_); }

  // Forgets the script lines, navigations and notifications seen so far.
  void ClearRecords() {
    page_.ClearRecords();
    listener_->Clear();
  }

  void ReachWaiting() {
    instance_->LaunchToTarget(&target_);
    page_.CompleteLoad();
    ASSERT_EQ(instance_->GetContentState(), interop::Waiting);
  }

  void ReachLoadedCanTalk() {
    ReachWaiting();
    instance_->WebSideStartHandShake();
    ASSERT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  }

  bool TimerRuns() { return env_.Queue().IsArmed(); }

  TimerEnvironmentScope env_;
  ScriptedPage page_;
  TargetConfig target_{"main", "Main page", "https://app.example/start"};
  HostManager* previousManager_ = nullptr;
  HostManager* manager_ = nullptr;
  std::unique_ptr<RecordingPropertyListener> listener_;
  std::unique_ptr<HostControlInstance> instance_;
};

// ---- Construction --------------------------------------------------------------

TEST_F(HostControlInstanceLifecycleTest, NewInstanceHasNoContentAndDefaults) {
  EXPECT_EQ(instance_->GetContentState(), interop::NoContent);
  EXPECT_EQ(instance_->GetTimeOutInterval(), 150000.0);
  EXPECT_EQ(instance_->GetWebSideVersion(), "");
  EXPECT_FALSE(instance_->GetActiveContent());
  EXPECT_EQ(instance_->GetActiveTarget(), nullptr);
  EXPECT_EQ(instance_->GetGlobalConfig(), manager_);
  ASSERT_NE(instance_->KnownServices(), nullptr);
  EXPECT_EQ(instance_->KnownServices()->GetSize(), 0);
  ASSERT_NE(instance_->GetKnownWebSideServices(), nullptr);
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 0);
  EXPECT_EQ(page_.ObserverCount(), 1U);
  EXPECT_TRUE(page_.Scripts().empty());
  EXPECT_TRUE(page_.Navigations().empty());
  EXPECT_EQ(env_.Queue().ArmCount(), 0);
  EXPECT_TRUE(listener_->Names().empty());
}

TEST_F(HostControlInstanceLifecycleTest, ScriptFunctionNamesAreThePagesFunctions) {
  EXPECT_EQ(HostControlInstance::WEBSIDEFUNCNAME_PING, "tavoInterop_Ping");
  EXPECT_EQ(HostControlInstance::WEBSIDEFUNCNAME_HOSTSERVICEUPDATES,
            "tavoInterop_HostServiceListUpdate");
  EXPECT_EQ(HostControlInstance::WEBSIDEFUNCNAME_INVOKEWEBMETHOD, "tavoInterop_WebMethod");
  EXPECT_EQ(HostControlInstance::WEBSIDEFUNCNAME_INVOKEWEBEVENT, "tavoInterop_WebEvent");
  EXPECT_EQ(HostControlInstance::WEBSIDEFUNCNAME_REQUESTWEBSIDELIST,
            "tavoInterop_RequestWebServiceList");
}

TEST_F(HostControlInstanceLifecycleTest, LogsEveryChangeOfTheManagersServiceList) {
  StdoutCapture capture;
  manager_->RegisterService(new CountingService("a.b", "_2014_07"));
  EXPECT_EQ(capture.Text(), "service list changed\n");
  // A replacement is a removal and an addition: two changes, two lines.
  manager_->RegisterService(new CountingService("a.b", "_2014_07"));
  EXPECT_EQ(capture.Text(), "service list changed\nservice list changed\nservice list changed\n");
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(HostControlInstanceLifecycleTest, EveryInstanceListensToTheManagersList) {
  ScriptedPage otherPage;
  auto other = std::make_unique<HostControlInstance>(&otherPage);
  {
    StdoutCapture capture;
    manager_->RegisterService(new CountingService("a.b", "_2014_07"));
    EXPECT_EQ(capture.Text(), "service list changed\nservice list changed\n");
  }
  DestroyHostControlInstance(other);
  StdoutCapture capture;
  manager_->RegisterService(new CountingService("c.d", "_2014_07"));
  EXPECT_EQ(capture.Text(), "service list changed\n");
}

TEST_F(HostControlInstanceLifecycleTest, RegisteringOnTheInstanceItselfLogsNothing) {
  StdoutCapture capture;
  instance_->RegisterService(new CountingService("a.b", "_2014_07"));
  EXPECT_EQ(capture.Text(), "");
}

// ---- Content states ---------------------------------------------------------------

TEST_F(HostControlInstanceLifecycleTest, NameOfStateNamesEveryStateAndUnknown) {
  const Strings expected = {"NoContent",    "Navigating",    "Waiting",      "TimedOut",
                            "Initializing", "LoadedCanTalk", "LoadedNoTalk", "LoggedIn"};
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(HostControlInstance::NameOfState(static_cast<HostContentState>(i)),
              expected[static_cast<std::size_t>(i)]);
  }
  EXPECT_EQ(HostControlInstance::NameOfState(static_cast<HostContentState>(42)), "Unknown");
}

TEST_F(HostControlInstanceLifecycleTest, SetContentStateRaisesOnlyForADifferentState) {
  instance_->SetContentState(interop::NoContent);
  EXPECT_TRUE(listener_->Names().empty());
  instance_->SetContentState(interop::LoadedNoTalk);
  instance_->SetContentState(interop::LoadedNoTalk);
  instance_->SetContentState(interop::LoggedIn);
  EXPECT_EQ(listener_->Names(), (Strings{"ContentState", "ContentState"}));
  EXPECT_EQ(listener_->States(), (Strings{"LoadedNoTalk", "LoggedIn"}));
  EXPECT_EQ(instance_->GetContentState(), interop::LoggedIn);
}

TEST_F(HostControlInstanceLifecycleTest, SetContentStateFromOutsideReachesAnyState) {
  for (HostContentState state : kAllStates) {
    instance_->SetContentState(state);
    EXPECT_EQ(instance_->GetContentState(), state);
  }
  EXPECT_EQ(listener_->States(), (Strings{"Navigating", "Waiting", "TimedOut", "Initializing",
                                          "LoadedCanTalk", "LoadedNoTalk", "LoggedIn"}));
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(HostControlInstanceLifecycleTest, SetActiveContentChangesNothing) {
  instance_->SetActiveContent(true);
  EXPECT_FALSE(instance_->GetActiveContent());
  EXPECT_TRUE(listener_->Names().empty());
  EXPECT_TRUE(instance_->LaunchToTarget(&target_, false));
  EXPECT_EQ(page_.Navigations(), Strings{"https://app.example/start"});
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
}

TEST_F(HostControlInstanceLifecycleTest, TimeOutIntervalIsStoredInMilliseconds) {
  instance_->SetTimeOutInterval(2500);
  EXPECT_EQ(instance_->GetTimeOutInterval(), 2500.0);
  instance_->SetTimeOutInterval(0);
  EXPECT_EQ(instance_->GetTimeOutInterval(), 0.0);
}

TEST_F(HostControlInstanceLifecycleTest, LaunchNavigatesToTheTargetAndStartsTheTimeOut) {
  EXPECT_TRUE(instance_->LaunchToTarget(&target_, true));
  EXPECT_EQ(listener_->States(), Strings{"Navigating"});
  EXPECT_EQ(page_.Navigations(), Strings{"https://app.example/start"});
  EXPECT_EQ(instance_->GetActiveTarget(), &target_);
  EXPECT_TRUE(page_.Scripts().empty());
  EXPECT_TRUE(TimerRuns());
  EXPECT_EQ(env_.Queue().ArmedPeriods(), std::vector<unsigned int>{150000U});
}

TEST_F(HostControlInstanceLifecycleTest, LaunchWithoutForceArgumentForces) {
  TargetConfig other("other", "Other", "https://app.example/other");
  instance_->LaunchToTarget(&target_);
  instance_->LaunchToTarget(&other);
  EXPECT_EQ(page_.Navigations(),
            (Strings{"https://app.example/start", "https://app.example/other"}));
  EXPECT_EQ(instance_->GetActiveTarget(), &other);
  // Already Navigating: the second launch raises nothing.
  EXPECT_EQ(listener_->States(), Strings{"Navigating"});
}

class LaunchFromEveryStateTest : public HostControlInstanceLifecycleTest,
                                 public ::testing::WithParamInterface<HostContentState> {};

TEST_P(LaunchFromEveryStateTest, GoesToNavigating) {
  instance_->SetContentState(GetParam());
  ClearRecords();
  EXPECT_TRUE(instance_->LaunchToTarget(&target_, false));
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
  EXPECT_EQ(listener_->States(),
            GetParam() == interop::Navigating ? Strings{} : Strings{"Navigating"});
  EXPECT_EQ(page_.Navigations(), Strings{"https://app.example/start"});
  EXPECT_TRUE(TimerRuns());
}

INSTANTIATE_TEST_SUITE_P(AllStates, LaunchFromEveryStateTest, ::testing::ValuesIn(kAllStates),
                         [](const ::testing::TestParamInfo<HostContentState>& info) {
                           return HostControlInstance::NameOfState(info.param);
                         });

TEST_F(HostControlInstanceLifecycleTest, LoadCompletedWhileNavigatingWaitsAndPings) {
  instance_->LaunchToTarget(&target_);
  ClearRecords();
  page_.CompleteLoad();
  EXPECT_EQ(instance_->GetContentState(), interop::Waiting);
  EXPECT_EQ(listener_->Names(), (Strings{"ContentState", "WebSideVersion"}));
  EXPECT_EQ(listener_->States(), Strings{"Waiting"});
  EXPECT_EQ(page_.Scripts(), Strings{kPing});
  EXPECT_EQ(instance_->GetWebSideVersion(), "1.0");
  // The time-out keeps running until the page starts the handshake.
  EXPECT_TRUE(TimerRuns());
}

class LoadCompletedElsewhereTest : public HostControlInstanceLifecycleTest,
                                   public ::testing::WithParamInterface<HostContentState> {};

TEST_P(LoadCompletedElsewhereTest, OnlyPings) {
  instance_->SetContentState(GetParam());
  ClearRecords();
  page_.CompleteLoad();
  EXPECT_EQ(instance_->GetContentState(), GetParam());
  EXPECT_EQ(page_.Scripts(), Strings{kPing});
  EXPECT_EQ(listener_->Names(), Strings{"WebSideVersion"});
  EXPECT_EQ(instance_->GetWebSideVersion(), "1.0");
}

INSTANTIATE_TEST_SUITE_P(States, LoadCompletedElsewhereTest,
                         ::testing::Values(interop::NoContent, interop::Waiting, interop::TimedOut,
                                           interop::LoadedCanTalk, interop::LoadedNoTalk,
                                           interop::LoggedIn),
                         [](const ::testing::TestParamInfo<HostContentState>& info) {
                           return HostControlInstance::NameOfState(info.param);
                         });

TEST_F(HostControlInstanceLifecycleTest, LoadCompletedWhileInitializingRunsTheHandshake) {
  instance_->SetContentState(interop::Initializing);
  ClearRecords();
  page_.CompleteLoad();
  EXPECT_EQ(page_.Scripts(), EmptyHandshake());
  EXPECT_EQ(listener_->States(), Strings{"LoadedCanTalk"});
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
}

TEST_F(HostControlInstanceLifecycleTest, FailedPingOnLoadIsLoggedAndIgnored) {
  page_.Fail("tavoInterop_Ping", ScriptedPage::ScriptException("no page", "here"));
  instance_->LaunchToTarget(&target_);
  StdoutCapture capture;
  page_.CompleteLoad();
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_Ping\n");
  EXPECT_EQ(instance_->GetContentState(), interop::Waiting);
  EXPECT_EQ(instance_->GetWebSideVersion(), "");
  EXPECT_EQ(listener_->Names(), (Strings{"ContentState", "ContentState"}));
}

TEST_F(HostControlInstanceLifecycleTest, PingWithTheSameVersionRaisesNoVersionChange) {
  page_.CompleteLoad();
  page_.CompleteLoad();
  EXPECT_EQ(listener_->Names(), Strings{"WebSideVersion"});
  page_.PageVersion = "2.5";
  page_.CompleteLoad();
  EXPECT_EQ(listener_->Names(), (Strings{"WebSideVersion", "WebSideVersion"}));
  EXPECT_EQ(instance_->GetWebSideVersion(), "2.5");
  EXPECT_EQ(page_.Scripts(), (Strings{kPing, kPing, kPing}));
}

TEST_F(HostControlInstanceLifecycleTest, SetWebSideVersionRaisesOnlyForADifferentText) {
  instance_->SetWebSideVersion("");
  EXPECT_TRUE(listener_->Names().empty());
  instance_->SetWebSideVersion("1.0");
  instance_->SetWebSideVersion("1.0");
  instance_->SetWebSideVersion("1.0 ");
  EXPECT_EQ(listener_->Names(), (Strings{"WebSideVersion", "WebSideVersion"}));
  EXPECT_EQ(instance_->GetWebSideVersion(), "1.0 ");
}

// ---- Start of the handshake by the page ------------------------------------------

TEST_F(HostControlInstanceLifecycleTest, StartWhileWaitingRunsTheHandshake) {
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  page_.ClearRecords();
  instance_->WebSideStartHandShake();
  EXPECT_EQ(listener_->States(),
            (Strings{"Navigating", "Waiting", "Initializing", "LoadedCanTalk"}));
  EXPECT_EQ(page_.Scripts(), EmptyHandshake());
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_FALSE(TimerRuns());
}

TEST_F(HostControlInstanceLifecycleTest, StartWhileNavigatingWaitsForTheLoad) {
  instance_->LaunchToTarget(&target_);
  ClearRecords();
  instance_->WebSideStartHandShake();
  EXPECT_EQ(listener_->States(), Strings{"Initializing"});
  EXPECT_TRUE(page_.Scripts().empty());
  EXPECT_FALSE(TimerRuns());

  page_.CompleteLoad();
  EXPECT_EQ(listener_->Names(), (Strings{"ContentState", "WebSideVersion", "ContentState"}));
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk"}));
  EXPECT_EQ(page_.Scripts(), EmptyHandshake());
  EXPECT_EQ(instance_->GetWebSideVersion(), "1.0");
}

class RestartedHandshakeTest : public HostControlInstanceLifecycleTest,
                               public ::testing::WithParamInterface<HostContentState> {};

TEST_P(RestartedHandshakeTest, RunsAgainThroughInitializing) {
  ReachLoadedCanTalk();
  instance_->SetContentState(GetParam());
  ClearRecords();
  instance_->WebSideStartHandShake();
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk"}));
  EXPECT_EQ(page_.Scripts(), EmptyHandshake());
}

INSTANTIATE_TEST_SUITE_P(TalkingStates, RestartedHandshakeTest,
                         ::testing::Values(interop::LoadedCanTalk, interop::LoggedIn),
                         [](const ::testing::TestParamInfo<HostContentState>& info) {
                           return HostControlInstance::NameOfState(info.param);
                         });

class IgnoredHandshakeTest : public HostControlInstanceLifecycleTest,
                             public ::testing::WithParamInterface<HostContentState> {};

TEST_P(IgnoredHandshakeTest, DeletesTheTimerAndDoesNothingElse) {
  instance_->LaunchToTarget(&target_);
  instance_->SetContentState(GetParam());
  ClearRecords();
  ASSERT_TRUE(TimerRuns());
  const int disarmsBefore = env_.Queue().DisarmCount();

  instance_->WebSideStartHandShake();
  EXPECT_EQ(instance_->GetContentState(), GetParam());
  EXPECT_TRUE(listener_->Names().empty());
  EXPECT_TRUE(page_.Scripts().empty());
  EXPECT_FALSE(TimerRuns());
  EXPECT_EQ(env_.Queue().DisarmCount(), disarmsBefore + 1);
}

INSTANTIATE_TEST_SUITE_P(QuietStates, IgnoredHandshakeTest,
                         ::testing::Values(interop::TimedOut, interop::LoadedNoTalk,
                                           interop::NoContent, interop::Initializing),
                         [](const ::testing::TestParamInfo<HostContentState>& info) {
                           return HostControlInstance::NameOfState(info.param);
                         });

TEST_F(HostControlInstanceLifecycleTest, StartOnANewInstanceDoesNothing) {
  instance_->WebSideStartHandShake();
  EXPECT_EQ(instance_->GetContentState(), interop::NoContent);
  EXPECT_TRUE(listener_->Names().empty());
  EXPECT_TRUE(page_.Scripts().empty());
}

// ---- The handshake ------------------------------------------------------------------

TEST_F(HostControlInstanceLifecycleTest, HandshakeSendsBothListsAndTakesThePagesList) {
  manager_->RegisterService(new CountingService("a", "1"));
  manager_->RegisterService(new CountingService("tavo.x.Svc.host", "_2014_07"));
  instance_->RegisterService(new CountingService("b", "2"));
  page_.WebServiceList =
      "[{\"FQN\": \"page.one.client\", \"SvcVersion\": \"_2014_07\"}, "
      "{\"FQN\": \"page.two.client\", \"SvcVersion\": \"3\"}]";
  ReachWaiting();
  ClearRecords();

  StdoutCapture capture;
  instance_->WebSideStartHandShake();
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(page_.Scripts(),
            (Strings{kPing,
                     HostList("[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}, "
                              "{\"FQN\": \"tavo.x.Svc.host\", \"SvcVersion\": \"_2014_07\"}]"),
                     HostList("[{\"FQN\": \"b\", \"SvcVersion\": \"2\"}]"), kRequestList,
                     kStartupEvent}));
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk"}));
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);

  base::IObservableList<interop::ITargetServiceDesc*>* pageServices =
      instance_->GetKnownWebSideServices();
  ASSERT_EQ(pageServices->GetSize(), 2);
  EXPECT_NE(dynamic_cast<interop::WebSideServiceDescriptor*>(pageServices->GetAt(0)), nullptr);
  EXPECT_EQ(pageServices->GetAt(0)->GetFQN(), "page.one.client");
  EXPECT_EQ(pageServices->GetAt(0)->GetSvcVersion(), "_2014_07");
  EXPECT_NE(dynamic_cast<interop::WebSideServiceDescriptor*>(pageServices->GetAt(1)), nullptr);
  EXPECT_EQ(pageServices->GetAt(1)->GetFQN(), "page.two.client");
  EXPECT_EQ(pageServices->GetAt(1)->GetSvcVersion(), "3");
}

TEST_F(HostControlInstanceLifecycleTest, HandshakeRecordsAChangedPageVersion) {
  ReachWaiting();
  ClearRecords();
  page_.PageVersion = "2014.10";
  instance_->WebSideStartHandShake();
  EXPECT_EQ(listener_->Names(), (Strings{"ContentState", "WebSideVersion", "ContentState"}));
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk"}));
  EXPECT_EQ(instance_->GetWebSideVersion(), "2014.10");
}

TEST_F(HostControlInstanceLifecycleTest, StartupEventReachesThePageWithAnEmptyPayload) {
  std::vector<std::pair<std::string, std::string>> events;
  page_.EventHandler = [&events](const std::string& descriptor, const std::string& payload) {
    events.emplace_back(descriptor, payload);
    return std::string("ignored");
  };
  ReachLoadedCanTalk();
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].first,
            "{\"FQN\": \"tavo.wevlin.infrastructure.services.startup.StartupNotification.host\", "
            "\"SvcVersion\": \"_2014_02\"}");
  EXPECT_EQ(events[0].second, "");
}

struct FailingStep {
  const char* name;
  const char* function;
  int successesBefore;
  const char* logText;
  std::size_t scriptsRun;
};

// Names the step in test output (the default printer would dump the raw bytes,
// padding included).
void PrintTo(const FailingStep& step, std::ostream* os) { *os << step.name; }

class HandshakeStepFailureTest : public HostControlInstanceLifecycleTest,
                                 public ::testing::WithParamInterface<FailingStep> {};

TEST_P(HandshakeStepFailureTest, EndsInLoadedNoTalkWithItsLogLine) {
  manager_->RegisterService(new CountingService("a", "1"));
  ReachWaiting();
  ClearRecords();
  page_.FailAfter(GetParam().function, GetParam().successesBefore,
                  ScriptedPage::ScriptException("TypeError", "at line 1"));

  StdoutCapture capture;
  instance_->WebSideStartHandShake();
  EXPECT_EQ(capture.Text(), GetParam().logText);
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedNoTalk"}));
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  EXPECT_FALSE(TimerRuns());

  const Strings full = {kPing, HostList("[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}]"),
                        HostList("[]"), kRequestList};
  EXPECT_EQ(page_.Scripts(),
            Strings(full.begin(), full.begin() + static_cast<long>(GetParam().scriptsRun)));
  EXPECT_TRUE(page_.CallsOf("tavoInterop_WebEvent").empty());
}

INSTANTIATE_TEST_SUITE_P(
    EachStep, HandshakeStepFailureTest,
    ::testing::Values(
        FailingStep{"Ping", "tavoInterop_Ping", 0, "Caught exception running tavoInterop_Ping\n",
                    1},
        FailingStep{"ManagerList", "tavoInterop_HostServiceListUpdate", 0,
                    "Caught exception running tavoInterop_HostServiceListUpdate\n", 2},
        FailingStep{"InstanceList", "tavoInterop_HostServiceListUpdate", 1,
                    "Caught exception running tavoInterop_HostServiceListUpdate\n", 3},
        FailingStep{"PageList", "tavoInterop_RequestWebServiceList", 0,
                    "Caught exception running tavoInterop_RequestWebServiceList\n", 4}),
    [](const ::testing::TestParamInfo<FailingStep>& info) { return info.param.name; });

TEST_F(HostControlInstanceLifecycleTest, FailingStartupEventIsLoggedAndTheStateStays) {
  ReachWaiting();
  ClearRecords();
  page_.Fail("tavoInterop_WebEvent", ScriptedPage::ScriptException("TypeError", "x"));
  StdoutCapture capture;
  instance_->WebSideStartHandShake();
  EXPECT_EQ(capture.Text(),
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Error invoking the startup notification.\n");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk"}));
  EXPECT_EQ(page_.Scripts(), EmptyHandshake());
}

TEST_F(HostControlInstanceLifecycleTest, StartupEventAnsweredWithAnErrorRecordIsLogged) {
  ReachWaiting();
  ClearRecords();
  page_.EventReply = "{\"Exception\": {\"name\": \"E\", \"message\": \"M\"}}";
  StdoutCapture capture;
  instance_->WebSideStartHandShake();
  EXPECT_EQ(capture.Text(), "Error invoking the startup notification.\n");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(listener_->States(), (Strings{"Initializing", "LoadedCanTalk"}));
}

TEST_F(HostControlInstanceLifecycleTest, FailedHandshakeCanBeRetriedOnlyByANewLaunch) {
  ReachWaiting();
  page_.Fail("tavoInterop_Ping", ScriptedPage::ScriptException("gone", ""));
  instance_->WebSideStartHandShake();
  ASSERT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  page_.Heal("tavoInterop_Ping");
  ClearRecords();

  instance_->WebSideStartHandShake();
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
  EXPECT_TRUE(page_.Scripts().empty());

  ReachLoadedCanTalk();
  EXPECT_EQ(listener_->States(),
            (Strings{"Navigating", "Waiting", "Initializing", "LoadedCanTalk"}));
}

TEST_F(HostControlInstanceLifecycleTest, HandshakeThroughTheHostApi) {
  interop::HostAPI api(instance_.get());
  ReachWaiting();
  ClearRecords();
  EXPECT_EQ(api.tavoHost_WebSideStartHandShake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(page_.Scripts(), EmptyHandshake());
}

// ---- Destruction ----------------------------------------------------------------------

TEST_F(HostControlInstanceLifecycleTest, DestructionRaisesInstanceDestroyedWhileIntact) {
  page_.WebServiceList = "[{\"FQN\": \"page.one.client\", \"SvcVersion\": \"1\"}]";
  ReachLoadedCanTalk();
  instance_->LaunchToTarget(&target_);  // so that a timer runs as well
  ClearRecords();

  HostControlInstance* dying = instance_.get();
  bool hookRan = false;
  listener_->SetHook([&](const std::string& name) {
    if (name != "InstanceDestroyed") return;
    hookRan = true;
    // Nothing has been taken apart yet.
    EXPECT_EQ(dying->GetContentState(), interop::Navigating);
    EXPECT_EQ(dying->GetWebSideVersion(), "1.0");
    EXPECT_EQ(dying->GetKnownWebSideServices()->GetSize(), 1);
    EXPECT_EQ(dying->GetKnownWebSideServices()->GetAt(0)->GetFQN(), "page.one.client");
    EXPECT_EQ(dying->GetGlobalConfig(), manager_);
    EXPECT_EQ(page_.ObserverCount(), 1U);
    EXPECT_TRUE(TimerRuns());
    // Still listening to the manager's list: this registration is logged.
    manager_->RegisterService(new CountingService("during.destruction", "1"));
  });

  StdoutCapture capture;
  DestroyInstance();
  EXPECT_TRUE(hookRan);
  EXPECT_EQ(listener_->Names(), Strings{"InstanceDestroyed"});
  EXPECT_EQ(capture.Text(), "service list changed\n");
}

TEST_F(HostControlInstanceLifecycleTest, DestructionStopsListeningAndDeletesTheTimer) {
  ReachWaiting();
  ASSERT_TRUE(TimerRuns());
  const int disarmsBefore = env_.Queue().DisarmCount();
  DestroyInstance();

  EXPECT_EQ(page_.ObserverCount(), 0U);
  EXPECT_FALSE(TimerRuns());
  EXPECT_EQ(env_.Queue().DisarmCount(), disarmsBefore + 1);

  StdoutCapture capture;
  manager_->RegisterService(new CountingService("after.destruction", "1"));
  page_.CompleteLoad();
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(page_.Scripts(), Strings{kPing});  // only the ping of the load before
}

TEST_F(HostControlInstanceLifecycleTest, DestructionLeavesTheInstancesOwnServicesAlive) {
  ServiceProbe probe;
  auto* first = new CountingService("a.b", "1", &probe);
  auto* second = new CountingService("c.d", "1", &probe);
  instance_->RegisterService(first);
  instance_->RegisterService(second);
  base::IObservableList<IHostServiceDescriptor*>* own = instance_->KnownServices();
  page_.WebServiceList =
      "[{\"FQN\": \"p\", \"SvcVersion\": \"1\"}, {\"FQN\": \"q\", "
      "\"SvcVersion\": \"2\"}]";
  ReachLoadedCanTalk();

  instance_.reset();
  EXPECT_EQ(probe.destroyed, 0);
  ASSERT_EQ(own->GetSize(), 2);
  EXPECT_EQ(own->GetAt(0), first);
  EXPECT_EQ(own->GetAt(1), second);
  delete first;
  delete second;
  delete own;
  EXPECT_EQ(probe.destroyed, 2);
}

TEST_F(HostControlInstanceLifecycleTest, DestructionOfAFreshInstanceRaisesOnlyTheEnd) {
  DestroyInstance();
  EXPECT_EQ(listener_->Names(), Strings{"InstanceDestroyed"});
  EXPECT_EQ(page_.ObserverCount(), 0U);
  EXPECT_EQ(env_.Queue().ArmCount(), 0);
}

}  // namespace
