#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "support/RecordingPropertyListener.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"

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

using StartupNotificationSvcEndToEndTest = wevlin_test::HostedPageFixture;

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
