#include "wevlin/infrastructure/services/version/_2014_03/TestVersionProxy01.h"

#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/AssertionMessage.h"
#include "support/MockHostControlInstance.h"
#include "support/TalkingPageFixture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionProxy.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionSvc.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionSvc01.h"

namespace {

namespace V3 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03;
using ::testing::_;
using ::testing::Return;
using ::testing::StrictMock;
using V3::TestVersionProxy01;
using V3::TestVersionResponseMsg;
using wevlin_test::MockHostControlInstance;

static_assert(std::is_same_v<V3::TestVersionProxy, TestVersionProxy01>);

constexpr char kRequest[] =
    R"({"Version": "_2014_03", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_03", "ExtraInfo": "Extra Info"})";

TEST(TestVersionProxy01Test, TargetsTheVersionTestServiceOfVersion2014_03) {
  TestVersionProxy01 proxy(nullptr);
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetFQN(),
            "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_03");
}

TEST(TestVersionProxy01Test, WithoutInstanceReturnsEmptyTextsAndResultFalse) {
  TestVersionProxy01 proxy(nullptr);
  EXPECT_EQ(proxy.GetClientServiceVersion().ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "", "ServiceVersion": "", "Result": false})");
}

TEST(TestVersionProxy01Test, SendsExtraInfoAndReturnsTheAnswer) {
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy01 proxy(&instance);
  EXPECT_CALL(instance, InvokeWebMethod(proxy.GetBaseServiceDescriptor(), kRequest))
      .WillOnce(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","Result":true,"Version":"_2014_03"})"));
  TestVersionResponseMsg answer = proxy.GetClientServiceVersion();
  EXPECT_EQ(
      answer.ToJsonString(),
      R"({"Version": "_2014_03", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_03", "Result": true})");
}

TEST(TestVersionProxy01DeathTest, AnAnswerWithResultFalseFailsTheThirdAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy01 proxy(&instance);
  ON_CALL(instance, InvokeWebMethod(_, _))
      .WillByDefault(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","Result":false})"));
  EXPECT_CALL(instance, InvokeWebMethod(_, _)).Times(::testing::AnyNumber());
  EXPECT_DEATH(
      proxy.GetClientServiceVersion(),
      wevlin_test::AssertionMessage("TestVersionProxy01.cpp", "returnMessage.Result == true"));
}

TEST(TestVersionProxy01DeathTest, AnAnswerWithoutResultFailsTheThirdAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy01 proxy(&instance);
  // An answer of the older shape: name and version match, no "Result".
  ON_CALL(instance, InvokeWebMethod(_, _))
      .WillByDefault(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","Version":"_2014_02"})"));
  EXPECT_CALL(instance, InvokeWebMethod(_, _)).Times(::testing::AnyNumber());
  EXPECT_DEATH(
      proxy.GetClientServiceVersion(),
      wevlin_test::AssertionMessage("TestVersionProxy01.cpp", "returnMessage.Result == true"));
}

TEST(TestVersionProxy01DeathTest, AnAnswerOfVersion2014_02FailsTheVersionAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  StrictMock<MockHostControlInstance> instance;
  TestVersionProxy01 proxy(&instance);
  ON_CALL(instance, InvokeWebMethod(_, _))
      .WillByDefault(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"));
  EXPECT_CALL(instance, InvokeWebMethod(_, _)).Times(::testing::AnyNumber());
  EXPECT_DEATH(
      proxy.GetClientServiceVersion(),
      wevlin_test::AssertionMessage("TestVersionProxy01.cpp",
                                    "targetDesc->GetSvcVersion() == returnMessage.ServiceVersion"));
}

// ---- End to end: the service on a host control instance over a scripted page

using TestVersionProxy01EndToEndTest = wevlin_test::TalkingPageFixture;

TEST_F(TestVersionProxy01EndToEndTest, TheRequestReachesThePageAsAMethodScriptLine) {
  page_.MethodReply =
      R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","Result":true,"Version":"_2014_03"})";
  TestVersionProxy01 proxy(instance_.get());
  EXPECT_TRUE(proxy.GetClientServiceVersion().Result);
  EXPECT_EQ(
      page_.Scripts(),
      std::vector<std::string>{
          R"(tavoInterop_WebMethod('{"FQN": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", )"
          R"("SvcVersion": "_2014_03"}','{"Version": "_2014_03", "ServiceName": )"
          R"("tavo.wevlin.infrastructure.services.version.TestVersionSvc", )"
          R"("ServiceVersion": "_2014_03", "ExtraInfo": "Extra Info"}');)"});
}

// A page that serves the version test by passing each call back to the host's
// service of the same name and version, so that proxy and service of both
// versions check each other across the whole path.
TEST_F(TestVersionProxy01EndToEndTest, ProxiesAndServicesOfBothVersionsAgree) {
  namespace V2 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02;
  manager_->RegisterService(new V2::TestVersionSvc(nullptr));
  manager_->RegisterService(new V3::TestVersionSvc01(nullptr));
  page_.MethodHandler = [this](const std::string& descriptor, const std::string& payload) {
    return api_->tavoHostMethod(descriptor, payload);
  };

  TestVersionResponseMsg answer = TestVersionProxy01(instance_.get()).GetClientServiceVersion();
  EXPECT_EQ(
      answer.ToJsonString(),
      R"({"Version": "_2014_03", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_03", "Result": true})");
  V2::TestVersionResponseMsg older =
      V2::TestVersionProxy(instance_.get()).GetClientServiceVersion();
  EXPECT_EQ(
      older.ToJsonString(),
      R"({"Version": "_2014_02", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})");
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebMethod").size(), 2u);
}

}  // namespace
