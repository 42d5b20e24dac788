#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoSvc.h"

#include <stdexcept>
#include <string>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/MockHostControlInstance.h"
#include "support/TalkingPageFixture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoResponseMsg.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleHostSessionInfoSvc.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    HostSessionInfoResponseMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::HostSessionInfoSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    IHandleHostSessionInfoSvc;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::ThrowsExactly;

static_assert(std::is_abstract_v<IHandleHostSessionInfoSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleHostSessionInfoSvc>);

// Answers with its own message and records what it was given.
class SessionHandler : public IHandleHostSessionInfoSvc {
 public:
  const HostSessionInfoResponseMsg& GetHostSessionInfo(
      IHostControlInstance* instance, IHostServiceDescriptor* descriptor) override {
    ++calls;
    lastInstance = instance;
    lastDescriptor = descriptor;
    if (fail) throw std::runtime_error("no session store");
    return answer;
  }

  HostSessionInfoResponseMsg answer;
  int calls = 0;
  bool fail = false;
  IHostControlInstance* lastInstance = nullptr;
  IHostServiceDescriptor* lastDescriptor = nullptr;
};

TEST(HostSessionInfoSvcTest, IsTheHostSessionInfoServiceOfVersion2014_02) {
  SessionHandler handler;
  HostSessionInfoSvc service(&handler);
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_02");
  EXPECT_EQ(handler.calls, 0);
}

TEST(HostSessionInfoSvcTest, AnInactiveSessionRepliesFalseAndTheHandlersEmptyUser) {
  StrictMock<MockHostControlInstance> instance;
  SessionHandler handler;
  HostSessionInfoSvc service(&handler);
  EXPECT_EQ(service.InvokeMethod(&instance, &service, "{}"),
            R"({"Version": "_2014_02", "IsSessionActive": false, "UserName": ""})");
  EXPECT_EQ(handler.calls, 1);
  EXPECT_EQ(handler.lastInstance, &instance);
  EXPECT_EQ(handler.lastDescriptor, &service);
}

TEST(HostSessionInfoSvcTest, AnActiveSessionRepliesTrueAndTheUser) {
  StrictMock<MockHostControlInstance> instance;
  SessionHandler handler;
  handler.answer.IsSessionActive = true;
  handler.answer.UserName = "ann";
  HostSessionInfoSvc service(&handler);
  EXPECT_EQ(service.InvokeMethod(&instance, &service, ""),
            R"({"Version": "_2014_02", "IsSessionActive": true, "UserName": "ann"})");
}

TEST(HostSessionInfoSvcTest, ThePayloadIsNotRead) {
  SessionHandler handler;
  handler.answer.UserName = "u";
  HostSessionInfoSvc service(&handler);
  const std::string expected =
      R"({"Version": "_2014_02", "IsSessionActive": false, "UserName": "u"})";
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, "not json at all"), expected);
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, R"({"UserName": "other"})"), expected);
  EXPECT_EQ(handler.calls, 2);
  EXPECT_EQ(handler.lastInstance, nullptr);
}

TEST(HostSessionInfoSvcTest, AsksTheHandlerOnEveryCall) {
  SessionHandler handler;
  HostSessionInfoSvc service(&handler);
  service.InvokeMethod(nullptr, &service, "");
  handler.answer.IsSessionActive = true;
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, ""),
            R"({"Version": "_2014_02", "IsSessionActive": true, "UserName": ""})");
  EXPECT_EQ(handler.calls, 2);
}

TEST(HostSessionInfoSvcTest, AnEventIsIgnored) {
  StrictMock<MockHostControlInstance> instance;
  SessionHandler handler;
  HostSessionInfoSvc service(&handler);
  service.InvokeEvent(&instance, &service, "{}");
  EXPECT_EQ(handler.calls, 0);
}

TEST(HostSessionInfoSvcTest, AHandlerExceptionPassesThrough) {
  SessionHandler handler;
  handler.fail = true;
  HostSessionInfoSvc service(&handler);
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { service.InvokeMethod(nullptr, &service, ""); }, "no session store"));
}

TEST(HostSessionInfoSvcTest, ACopyAsksTheSameHandler) {
  SessionHandler handler;
  handler.answer.UserName = "z";
  HostSessionInfoSvc original(&handler);
  HostSessionInfoSvc copy(original);
  EXPECT_EQ(copy.InvokeMethod(nullptr, &copy, ""),
            R"({"Version": "_2014_02", "IsSessionActive": false, "UserName": "z"})");
  EXPECT_EQ(handler.lastDescriptor, &copy);
}

// ---- End to end: the service on a host control instance over a scripted page

using HostSessionInfoSvcEndToEndTest = wevlin_test::TalkingPageFixture;

constexpr char kHostSessionInfoHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host", )"
    R"("SvcVersion": "_2014_02"})";

TEST_F(HostSessionInfoSvcEndToEndTest, ThePageReceivesTheSessionAsTheMethodsResult) {
  SessionHandler handler;
  handler.answer.IsSessionActive = true;
  handler.answer.UserName = "ann";
  manager_->RegisterService(new HostSessionInfoSvc(&handler));
  EXPECT_EQ(api_->tavoHostMethod(kHostSessionInfoHost, ""),
            R"({"Version": "_2014_02", "IsSessionActive": true, "UserName": "ann"})");
  EXPECT_EQ(handler.lastInstance, instance_.get());
  ASSERT_NE(handler.lastDescriptor, nullptr);
  EXPECT_EQ(handler.lastDescriptor->GetFQN(),
            "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host");
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(HostSessionInfoSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  SessionHandler handler;
  handler.fail = true;
  manager_->RegisterService(new HostSessionInfoSvc(&handler));
  EXPECT_EQ(api_->tavoHostMethod(kHostSessionInfoHost, "{}"),
            R"({"Exception": {"name": "std::runtime_error", "message": "no session store"}})");
}

TEST_F(HostSessionInfoSvcEndToEndTest, AnotherVersionIsNotFound) {
  SessionHandler handler;
  manager_->RegisterService(new HostSessionInfoSvc(&handler));
  EXPECT_EQ(api_->tavoHostMethod(
                R"({"FQN": "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host", )"
                R"("SvcVersion": "_2014_07"})",
                ""),
            R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
            R"(descriptor found for: tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host )"
            R"(ver: _2014_07"}})");
  EXPECT_EQ(handler.calls, 0);
}

}  // namespace
