#include "wevlin/infrastructure/services/version/_2014_03/TestVersionSvc01.h"

#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/AssertionMessage.h"
#include "support/TalkingPageFixture.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionSvc.h"
#include "wevlin/infrastructure/services/version/_2014_03/IHandleTestVersionSvc.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionInputMsg.h"

namespace {

namespace V3 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03;
using V3::IHandleTestVersionSvc;
using V3::TestVersionInputMsg;
using V3::TestVersionSvc01;

static_assert(std::is_same_v<V3::TestVersionSvc, TestVersionSvc01>);
static_assert(std::is_abstract_v<IHandleTestVersionSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleTestVersionSvc>);

class CountingHandler : public IHandleTestVersionSvc {
 public:
  void OnTestVersion(const TestVersionInputMsg&) override { ++calls; }
  int calls = 0;
};

constexpr char kMatchingRequest[] =
    R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","ExtraInfo":"Extra Info","Version":"_2014_03"})";

// A request that names this service in this version, with `extraInfo`.
std::string RequestWithExtraInfo(const std::string& extraInfo) {
  return R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","ExtraInfo":")" +
         extraInfo + R"(","Version":"_2014_03"})";
}

TEST(TestVersionSvc01Test, IsTheVersionTestServiceOfVersion2014_03) {
  TestVersionSvc01 service(nullptr);
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_03");
}

TEST(TestVersionSvc01Test, AMatchingRequestIsAnsweredWithNameVersionAndResultTrue) {
  CountingHandler handler;
  TestVersionSvc01 service(&handler);
  EXPECT_EQ(
      service.InvokeMethod(nullptr, &service, kMatchingRequest),
      R"({"Version": "_2014_03", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_03", "Result": true})");
  EXPECT_EQ(handler.calls, 0);
}

TEST(TestVersionSvc01Test, APayloadThatIsNotJsonGetsTheEmptyReply) {
  TestVersionSvc01 service(nullptr);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "not json"), "");
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "\"text\""), "");
}

TEST(TestVersionSvc01Test, AnEventIsIgnored) {
  CountingHandler handler;
  TestVersionSvc01 service(&handler);
  service.InvokeEvent(nullptr, &service, kMatchingRequest);
  EXPECT_EQ(handler.calls, 0);
}

TEST(TestVersionSvc01DeathTest, ExtraInfoInOtherCaseFailsTheThirdAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc01 service(nullptr);
  EXPECT_DEATH(service.InvokeMethod(nullptr, nullptr, RequestWithExtraInfo("Extra info")),
               wevlin_test::AssertionMessage("TestVersionSvc01.cpp",
                                             "inputMessage.ExtraInfo == \"Extra Info\""));
}

TEST(TestVersionSvc01DeathTest, ExtraInfoWithATrailingBlankFailsTheThirdAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc01 service(nullptr);
  EXPECT_DEATH(service.InvokeMethod(nullptr, nullptr, RequestWithExtraInfo("Extra Info ")),
               wevlin_test::AssertionMessage("TestVersionSvc01.cpp",
                                             "inputMessage.ExtraInfo == \"Extra Info\""));
}

TEST(TestVersionSvc01DeathTest, ARequestOfVersion2014_02FailsTheVersionAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc01 service(nullptr);
  EXPECT_DEATH(
      service.InvokeMethod(
          nullptr, nullptr,
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"),
      wevlin_test::AssertionMessage("TestVersionSvc01.cpp",
                                    "inputMessage.ServiceVersion == GetSvcVersion()"));
}

TEST(TestVersionSvc01DeathTest, AnotherServiceNameFailsTheNameAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc01 service(nullptr);
  EXPECT_DEATH(
      service.InvokeMethod(
          nullptr, nullptr,
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.testversionsvc","ServiceVersion":"_2014_03","ExtraInfo":"Extra Info"})"),
      wevlin_test::AssertionMessage("TestVersionSvc01.cpp",
                                    "inputMessage.ServiceName == GetFQN()"));
}

// ---- End to end: the service on a host control instance over a scripted page

using TestVersionSvc01EndToEndTest = wevlin_test::TalkingPageFixture;

TEST_F(TestVersionSvc01EndToEndTest, BothVersionsSideBySideAnswerForThemselves) {
  manager_->RegisterService(
      new Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::TestVersionSvc(
          nullptr));
  manager_->RegisterService(new TestVersionSvc01(nullptr));
  EXPECT_EQ(
      api_->tavoHostMethod(
          R"({"FQN": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "SvcVersion": "_2014_03"})",
          kMatchingRequest),
      R"({"Version": "_2014_03", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_03", "Result": true})");
  EXPECT_EQ(
      api_->tavoHostMethod(
          R"({"FQN": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "SvcVersion": "_2014_02"})",
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"),
      R"({"Version": "_2014_02", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})");
}

}  // namespace
