#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoResponseMsg.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    HostSessionInfoResponseMsg;
using wevlin_test::ThrowsExactly;

TEST(HostSessionInfoResponseMsgTest, DefaultIsNoActiveSessionAndNoUser) {
  HostSessionInfoResponseMsg message;
  EXPECT_FALSE(message.IsSessionActive);
  EXPECT_EQ(message.UserName, "");
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "IsSessionActive": false, "UserName": ""})");
}

TEST(HostSessionInfoResponseMsgTest, WritesTheFlagAsAJsonBoolean) {
  HostSessionInfoResponseMsg message;
  message.IsSessionActive = true;
  message.UserName = "ann";
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "IsSessionActive": true, "UserName": "ann"})");
}

TEST(HostSessionInfoResponseMsgTest, ReadsBothMembers) {
  HostSessionInfoResponseMsg message;
  ASSERT_TRUE(
      message.FromJsonString(R"({"UserName":"bob","IsSessionActive":true,"Version":"_2014_02"})"));
  EXPECT_TRUE(message.IsSessionActive);
  EXPECT_EQ(message.UserName, "bob");
}

TEST(HostSessionInfoResponseMsgTest, AFlagThatIsNoBooleanThrows) {
  HostSessionInfoResponseMsg message;
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { message.FromJsonString(R"({"IsSessionActive": "yes"})"); },
      "JSON data is not a boolean"));
  EXPECT_FALSE(message.IsSessionActive);
}

TEST(HostSessionInfoResponseMsgTest, CopySerialisesLikeTheOriginalAndIsIndependent) {
  HostSessionInfoResponseMsg original;
  original.IsSessionActive = true;
  original.UserName = "ann";
  HostSessionInfoResponseMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  copy.IsSessionActive = false;
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "IsSessionActive": false, "UserName": "ann"})");
  EXPECT_TRUE(original.IsSessionActive);
}

TEST(HostSessionInfoResponseMsgTest, AssignmentCopiesEveryValue) {
  HostSessionInfoResponseMsg source;
  ASSERT_TRUE(source.FromJsonString(
      R"({"Version": "_2014_07", "IsSessionActive": true, "UserName": "cy"})"));
  HostSessionInfoResponseMsg target;
  target = source;
  EXPECT_EQ(target.ToJsonString(),
            R"({"Version": "_2014_07", "IsSessionActive": true, "UserName": "cy"})");
}

}  // namespace
