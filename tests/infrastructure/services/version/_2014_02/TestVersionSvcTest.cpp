#include "wevlin/infrastructure/services/version/_2014_02/TestVersionSvc.h"

#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/AssertionMessage.h"
#include "support/MockHostControlInstance.h"
#include "support/TalkingPageFixture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/services/version/_2014_02/IHandleTestVersionSvc.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionInputMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::
    IHandleTestVersionSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::TestVersionInputMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::TestVersionSvc;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;

static_assert(std::is_abstract_v<IHandleTestVersionSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleTestVersionSvc>);

class CountingHandler : public IHandleTestVersionSvc {
 public:
  void OnTestVersion(const TestVersionInputMsg&) override { ++calls; }
  int calls = 0;
};

constexpr char kReply[] =
    R"({"Version": "_2014_02", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})";

TEST(TestVersionSvcTest, IsTheVersionTestServiceOfVersion2014_02) {
  TestVersionSvc service(nullptr);
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_02");
}

TEST(TestVersionSvcTest, AMatchingRequestIsAnsweredWithThisServicesNameAndVersion) {
  StrictMock<MockHostControlInstance> instance;
  CountingHandler handler;
  TestVersionSvc service(&handler);
  EXPECT_EQ(
      service.InvokeMethod(
          &instance, &service,
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"),
      kReply);
  EXPECT_EQ(handler.calls, 0);
}

TEST(TestVersionSvcTest, ARequestWithoutMessageVersionIsAnsweredAlike) {
  TestVersionSvc service(nullptr);
  EXPECT_EQ(
      service.InvokeMethod(
          nullptr, nullptr,
          R"({"ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})"),
      kReply);
}

TEST(TestVersionSvcTest, APayloadThatIsNotJsonGetsTheEmptyReply) {
  CountingHandler handler;
  TestVersionSvc service(&handler);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "not json"), "");
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, ""), "");
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "[1]"), "");
  EXPECT_EQ(handler.calls, 0);
}

TEST(TestVersionSvcTest, AnEventIsIgnored) {
  CountingHandler handler;
  TestVersionSvc service(&handler);
  service.InvokeEvent(nullptr, &service, "not json");
  EXPECT_EQ(handler.calls, 0);
}

TEST(TestVersionSvcTest, ACopyAnswersAlike) {
  TestVersionSvc original(nullptr);
  TestVersionSvc copy(original);
  EXPECT_EQ(
      copy.InvokeMethod(
          nullptr, nullptr,
          R"({"ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})"),
      kReply);
}

TEST(TestVersionSvcDeathTest, AnotherServiceNameFailsTheNameAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc service(nullptr);
  EXPECT_DEATH(
      service.InvokeMethod(
          nullptr, nullptr,
          R"({"ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersion", "ServiceVersion": "_2014_02"})"),
      wevlin_test::AssertionMessage("TestVersionSvc.cpp", "inputMessage.ServiceName == GetFQN()"));
}

TEST(TestVersionSvcDeathTest, ARequestOfVersion2014_03FailsTheVersionAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc service(nullptr);
  EXPECT_DEATH(
      service.InvokeMethod(
          nullptr, nullptr,
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","ExtraInfo":"Extra Info","Version":"_2014_03"})"),
      wevlin_test::AssertionMessage("TestVersionSvc.cpp",
                                    "inputMessage.ServiceVersion == GetSvcVersion()"));
}

TEST(TestVersionSvcDeathTest, AnEmptyRequestFailsTheNameAssertion) {
#ifdef NDEBUG
  GTEST_SKIP() << "assertions are compiled out";
#endif
  TestVersionSvc service(nullptr);
  EXPECT_DEATH(
      service.InvokeMethod(nullptr, nullptr, "{}"),
      wevlin_test::AssertionMessage("TestVersionSvc.cpp", "inputMessage.ServiceName == GetFQN()"));
}

// ---- End to end: the service on a host control instance over a scripted page

using TestVersionSvcEndToEndTest = wevlin_test::TalkingPageFixture;

constexpr char kTestVersionHost2014_02[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", )"
    R"("SvcVersion": "_2014_02"})";

TEST_F(TestVersionSvcEndToEndTest, ThePageReceivesTheServicesNameAndVersion) {
  CountingHandler handler;
  manager_->RegisterService(new TestVersionSvc(&handler));
  EXPECT_EQ(
      api_->tavoHostMethod(
          kTestVersionHost2014_02,
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"),
      kReply);
  EXPECT_EQ(api_->tavoHostMethod(kTestVersionHost2014_02, "not json"), "");
  EXPECT_EQ(handler.calls, 0);
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(TestVersionSvcEndToEndTest, AVersionThatIsNotRegisteredIsNotFound) {
  manager_->RegisterService(new TestVersionSvc(nullptr));
  EXPECT_EQ(api_->tavoHostMethod(
                R"({"FQN": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", )"
                R"("SvcVersion": "_2014_03"})",
                "{}"),
            R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
            R"(descriptor found for: tavo.wevlin.infrastructure.services.version.TestVersionSvc )"
            R"(ver: _2014_03"}})");
}

}  // namespace
