#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "support/RecordingPropertyListener.h"
#include "support/ScriptedPage.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::LoggedIn;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::StartupNotificationSvc;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;

TEST(StartupNotificationSvcTest, IsNamedAsTheWebSideExpects) {
  StartupNotificationSvc service;
  EXPECT_EQ(service.GetFQN(),
            "tavo.wevlin.infrastructure.services.startup.StartupNotification.host");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_02");
}

TEST(StartupNotificationSvcTest, AnEventMovesTheCallingInstanceToLoggedIn) {
  StrictMock<MockHostControlInstance> instance;
  StartupNotificationSvc service;
  EXPECT_CALL(instance, SetContentState(LoggedIn)).Times(1);
  service.InvokeEvent(&instance, &service, R"({"Version": "_2014_02"})");
}

TEST(StartupNotificationSvcTest, ThePayloadDoesNotMatter) {
  StrictMock<MockHostControlInstance> instance;
  StartupNotificationSvc service;
  EXPECT_CALL(instance, SetContentState(LoggedIn)).Times(3);
  service.InvokeEvent(&instance, &service, "");
  service.InvokeEvent(&instance, &service, "not json");
  service.InvokeEvent(&instance, nullptr, R"({"State": "busy"})");
}

TEST(StartupNotificationSvcTest, OnlyTheCallingInstanceIsMoved) {
  StrictMock<MockHostControlInstance> caller;
  StrictMock<MockHostControlInstance> bystander;
  StartupNotificationSvc service;
  EXPECT_CALL(caller, SetContentState(LoggedIn)).Times(1);
  service.InvokeEvent(&caller, &service, "{}");
}

TEST(StartupNotificationSvcTest, AnEventWithoutInstanceDoesNothing) {
  StartupNotificationSvc service;
  service.InvokeEvent(nullptr, &service, "{}");
  SUCCEED();
}

TEST(StartupNotificationSvcTest, AMethodCallIsAnsweredWithTheEmptyTextAndChangesNothing) {
  StrictMock<MockHostControlInstance> instance;
  StartupNotificationSvc service;
  EXPECT_EQ(service.InvokeMethod(&instance, &service, "{}"), "");
}

// ---- End to end: a host control instance on a scripted page ------------------

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

// A fresh host manager, a scripted page, a host control instance on it and the
// API through which the page's script calls the host. Services registered
// with the manager are deleted at the end of each test.
class StartupNotificationSvcEndToEndTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = e2e::internal::HostManagerTestPeer::InstallFresh();
    manager_ = e2e::HostManager::TheInstance();
    instance_ = std::make_unique<e2e::HostControlInstance>(&page_);
    api_ = std::make_unique<e2e::HostAPI>(instance_.get());
  }

  void TearDown() override {
    api_.reset();
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IObservableList<e2e::IHostServiceDescriptor*>*
        own = instance_->KnownServices();
    instance_.reset();
    delete own;
    std::vector<e2e::IHostServiceDescriptor*> services;
    for (int i = 0; i < manager_->KnownServices()->GetSize(); ++i) {
      services.push_back(manager_->KnownServices()->GetAt(i));
    }
    e2e::internal::HostManagerTestPeer::Restore(previousManager_);
    for (e2e::IHostServiceDescriptor* service : services) delete service;
  }

  // Launches, completes the load and lets the page run the handshake, so
  // that calls into the page are allowed; then forgets the lines run so far.
  void Talk() {
    instance_->LaunchToTarget(&target_);
    page_.CompleteLoad();
    ASSERT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
    ASSERT_EQ(instance_->GetContentState(), e2e::LoadedCanTalk);
    page_.ClearRecords();
  }

  wevlin_test::TimerEnvironmentScope env_;
  wevlin_test::ScriptedPage page_;
  e2e::TargetConfig target_{"app", "App", "https://app.example/"};
  e2e::HostManager* previousManager_ = nullptr;
  e2e::HostManager* manager_ = nullptr;
  std::unique_ptr<e2e::HostControlInstance> instance_;
  std::unique_ptr<e2e::HostAPI> api_;
};

constexpr char kStartupNotification[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", )"
    R"("SvcVersion": "_2014_02"})";

TEST_F(StartupNotificationSvcEndToEndTest, ThePagesStartupNotificationLogsTheControlIn) {
  manager_->RegisterService(new StartupNotificationSvc());
  Talk();
  wevlin_test::RecordingPropertyListener listener(instance_.get());
  instance_->AddChangeListener(&listener);
  EXPECT_EQ(api_->tavoHostEvent(kStartupNotification, R"({"Version": "_2014_02"})"), "");
  EXPECT_EQ(instance_->GetContentState(), e2e::LoggedIn);
  EXPECT_EQ(listener.States(), std::vector<std::string>{"LoggedIn"});
  instance_->RemoveChangeListener(&listener);
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(StartupNotificationSvcEndToEndTest, AnyPayloadLogsTheControlIn) {
  manager_->RegisterService(new StartupNotificationSvc());
  Talk();
  EXPECT_EQ(api_->tavoHostEvent(kStartupNotification, "no JSON at all"), "");
  EXPECT_EQ(instance_->GetContentState(), e2e::LoggedIn);
}

TEST_F(StartupNotificationSvcEndToEndTest, CallsIntoThePageAreAllowedOnceLoggedIn) {
  manager_->RegisterService(new StartupNotificationSvc());
  Talk();
  ASSERT_EQ(api_->tavoHostEvent(kStartupNotification, ""), "");
  page_.MethodReply = "pong";
  e2e::BaseServiceDescriptor target("a.client", "_2014_07");
  EXPECT_EQ(instance_->InvokeWebMethod(&target, "ping"), "pong");
}

TEST_F(StartupNotificationSvcEndToEndTest, WithoutTheServiceThePageGetsAnExceptionRecord) {
  Talk();
  EXPECT_EQ(api_->tavoHostEvent(kStartupNotification, ""),
            R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
            R"(descriptor found for: tavo.wevlin.infrastructure.services.startup.)"
            R"(StartupNotification.host ver: _2014_02"}})");
  EXPECT_EQ(instance_->GetContentState(), e2e::LoadedCanTalk);
}

}  // namespace
