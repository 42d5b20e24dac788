// The version test services and proxies built without assertions: every
// mismatch that a checked build stops at is then not checked, and the call
// carries on. This program compiles their sources itself with NDEBUG; each
// test below would abort if the checked objects of the library were linked
// instead.
#ifndef NDEBUG
#error "this test must be compiled with NDEBUG"
#endif

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionProxy.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionSvc.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionProxy01.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionSvc01.h"

namespace {

namespace V2 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02;
namespace V3 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03;
using ::testing::_;
using ::testing::Return;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;

TEST(VersionNoAssertTest, Service2014_02AnswersARequestForAnotherServiceWithItsOwnName) {
  V2::TestVersionSvc service(nullptr);
  EXPECT_EQ(
      service.InvokeMethod(nullptr, &service,
                           R"({"ServiceName":"some.other.Service","ServiceVersion":"_2014_03"})"),
      R"({"Version": "_2014_02", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_02"})");
}

TEST(VersionNoAssertTest, Service2014_03AnswersAWrongExtraInfoWithResultTrue) {
  V3::TestVersionSvc01 service(nullptr);
  const std::string reply =
      R"({"Version": "_2014_03", "ServiceName": "tavo.wevlin.infrastructure.services.version.TestVersionSvc", "ServiceVersion": "_2014_03", "Result": true})";
  EXPECT_EQ(
      service.InvokeMethod(
          nullptr, &service,
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","ExtraInfo":"Extra info"})"),
      reply);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "{}"), reply);
}

TEST(VersionNoAssertTest, Service2014_03StillAnswersANonRequestWithTheEmptyText) {
  V3::TestVersionSvc01 service(nullptr);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "not json"), "");
}

TEST(VersionNoAssertTest, Proxy2014_02ReturnsAMismatchedAnswerAsRead) {
  StrictMock<MockHostControlInstance> instance;
  V2::TestVersionProxy proxy(&instance);
  EXPECT_CALL(instance, InvokeWebMethod(proxy.GetBaseServiceDescriptor(), _))
      .WillOnce(Return(R"({"ServiceName":"x","ServiceVersion":"_2014_03"})"));
  V2::TestVersionResponseMsg answer = proxy.GetClientServiceVersion();
  EXPECT_EQ(answer.ServiceName, "x");
  EXPECT_EQ(answer.ServiceVersion, "_2014_03");
}

TEST(VersionNoAssertTest, Proxy2014_03ReturnsResultFalseAndAnUnreadableAnswerAsDefaults) {
  StrictMock<MockHostControlInstance> instance;
  V3::TestVersionProxy01 proxy(&instance);
  EXPECT_CALL(instance, InvokeWebMethod(_, _))
      .WillOnce(Return(
          R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","Result":false})"))
      .WillOnce(Return("no such service"));
  EXPECT_FALSE(proxy.GetClientServiceVersion().Result);
  EXPECT_EQ(proxy.GetClientServiceVersion().ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "", "ServiceVersion": "", "Result": false})");
}

}  // namespace
