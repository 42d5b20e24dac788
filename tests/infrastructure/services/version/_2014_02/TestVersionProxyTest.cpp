#include "wevlin/infrastructure/services/version/_2014_02/TestVersionProxy.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/AssertionMessage.h"
#include "support/ExceptionChecks.h"
#include "support/MockHostControlInstance.h"
#include "support/TalkingPageFixture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::TestVersionProxy;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::
    TestVersionResponseMsg;
using ::testing::_;
using ::testing::Return;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;
using wevlin_test::ThrowsExactly;

constexpr char kRequest[] =
    R"({"Version": "_2014_02", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})";

TEST(TestVersionProxyTest, TargetsTheVersionTestServiceOfVersion2014_02) {
  TestVersionProxy proxy(nullptr);
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_02");
}

TEST(TestVersionProxyTest, WithoutInstanceReturnsTheDefaultAnswer) {
  TestVersionProxy proxy(nullptr);
  TestVersionResponseMsg answer = proxy.GetClientServiceVersion();
  EXPECT_EQ(answer.ToJsonString(),
            R"({"Version": "_2014_02", "ServiceName": "", "ServiceVersion": ""})");
}

TEST(TestVersionProxyTest, SendsARequestNamingItsTargetAndReturnsTheAnswer) {
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebMethod(proxy.GetBaseServiceDescriptor(), kRequest))
      .WillOnce(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"));
  TestVersionResponseMsg answer = proxy.GetClientServiceVersion();
  EXPECT_EQ(answer.ServiceName, "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(answer.ServiceVersion, "_2014_02");
  // The returned copy writes like the answer it was read into.
  EXPECT_EQ(answer.ToJsonString(), kRequest);
}

TEST(TestVersionProxyTest, FailuresOfTheCallPassToTheCaller) {
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebMethod(_, _))
      .WillOnce([](ITargetServiceDesc*, std::string) -> std::string {
        throw std::runtime_error("Cannot talk to hosted content");
      });
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.GetClientServiceVersion(); },
                                                "Cannot talk to hosted content"));
}

TEST(TestVersionProxyDeathTest, AnAnswerOfAnotherVersionFailsTheVersionAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy proxy(&instance);
  ON_CALL(instance, InvokeWebMethod(_, _))
      .WillByDefault(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","Result":true,"Version":"_2014_03"})"));
  EXPECT_CALL(instance, InvokeWebMethod(_, _)).Times(::testing::AnyNumber());
  EXPECT_DEATH(
      proxy.GetClientServiceVersion(),
      wevlin_test::AssertionMessage("TestVersionProxy.cpp",
                                    "targetDesc->GetSvcVersion() == returnMessage.ServiceVersion"));
}

TEST(TestVersionProxyDeathTest, AnAnswerThatIsNotJsonFailsTheNameAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy proxy(&instance);
  ON_CALL(instance, InvokeWebMethod(_, _)).WillByDefault(Return("no such service"));
  EXPECT_CALL(instance, InvokeWebMethod(_, _)).Times(::testing::AnyNumber());
  EXPECT_DEATH(proxy.GetClientServiceVersion(),
               wevlin_test::AssertionMessage("TestVersionProxy.cpp",
                                             "targetDesc->GetFQN() == returnMessage.ServiceName"));
}

// ---- End to end: the service on a host control instance over a scripted page

namespace e2e = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

using TestVersionProxyEndToEndTest = wevlin_test::TalkingPageFixture;

TEST_F(TestVersionProxyEndToEndTest, TheRequestReachesThePageAsAMethodScriptLine) {
  page_.MethodReply =
      R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02"})";
  TestVersionProxy proxy(instance_.get());
  TestVersionResponseMsg answer = proxy.GetClientServiceVersion();
  EXPECT_EQ(answer.ToJsonString(), kRequest);
  EXPECT_EQ(
      page_.Scripts(),
      std::vector<std::string>{
          R"(tavoInterop_WebMethod('{"FQN": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", )"
          R"("SvcVersion": "_2014_02"}','{"Version": "_2014_02", "ServiceName": )"
          R"("tavo.wevlin.infrastructure.services.version.TestVersionSvc", )"
          R"("ServiceVersion": "_2014_02"}');)"});
}

TEST_F(TestVersionProxyEndToEndTest, WhenThePageCannotTalkTheCallFails) {
  instance_->SetContentState(e2e::LoadedNoTalk);
  TestVersionProxy proxy(instance_.get());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.GetClientServiceVersion(); },
                                                "Cannot talk to hosted content"));
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(TestVersionProxyEndToEndTest, AnErrorRecordOfThePagePassesToTheCaller) {
  page_.MethodReply = R"({"Exception": {"name": "Error", "message": "unknown service"}})";
  TestVersionProxy proxy(instance_.get());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { proxy.GetClientServiceVersion(); },
                                                "Error unknown service"));
}

}  // namespace
