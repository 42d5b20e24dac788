#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationResponseMsg.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::
    HostConfigurationResponseMsg;

constexpr char kEmpty[] =
    R"({"Version": "_2014_02", "AllowGoHome": "", "AllowThemeChange": "", )"
    R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "", )"
    R"("ShowVelmoraLogo": "", "Theme": ""})";

constexpr char kFilled[] =
    R"({"Version": "_2014_02", "AllowGoHome": "true", "AllowThemeChange": "false", )"
    R"("AllowUserSessionChange": "true", "HasFullScreenSupport": "false", "HostType": "Desktop", )"
    R"("ShowVelmoraLogo": "true", "Theme": "dark"})";

void Fill(HostConfigurationResponseMsg& message) {
  message.AllowGoHome = "true";
  message.AllowThemeChange = "false";
  message.AllowUserSessionChange = "true";
  message.HasFullScreenSupport = "false";
  message.HostType = "Desktop";
  message.ShowVelmoraLogo = "true";
  message.Theme = "dark";
}

TEST(HostConfigurationResponseMsgTest, ADefaultMessageWritesTheVersionAndSevenEmptyTexts) {
  HostConfigurationResponseMsg message;
  EXPECT_EQ(message.GetVersion(), "_2014_02");
  EXPECT_EQ(message.ToJsonString(), kEmpty);
}

TEST(HostConfigurationResponseMsgTest, WritesTheMembersInRegistrationOrder) {
  HostConfigurationResponseMsg message;
  Fill(message);
  EXPECT_EQ(message.ToJsonString(), kFilled);
}

TEST(HostConfigurationResponseMsgTest, ReadsEveryMember) {
  HostConfigurationResponseMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"Theme":"dark","ShowVelmoraLogo":"true","HostType":"Desktop",)"
      R"("HasFullScreenSupport":"false","AllowUserSessionChange":"true",)"
      R"("AllowThemeChange":"false","AllowGoHome":"true","Version":"_2014_02"})"));
  EXPECT_EQ(message.ToJsonString(), kFilled);
}

TEST(HostConfigurationResponseMsgTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<HostConfigurationResponseMsg>();
  Fill(*original);
  HostConfigurationResponseMsg copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), kFilled);
}

TEST(HostConfigurationResponseMsgTest, ACopyReadsIntoItsOwnMembers) {
  HostConfigurationResponseMsg original;
  HostConfigurationResponseMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Theme": "light"})"));
  EXPECT_EQ(copy.Theme, "light");
  EXPECT_EQ(original.Theme, "");
}

TEST(HostConfigurationResponseMsgTest, CopyAssignmentCopiesEveryValue) {
  HostConfigurationResponseMsg source;
  Fill(source);
  HostConfigurationResponseMsg target;
  target.Theme = "other";
  target = source;
  EXPECT_EQ(target.ToJsonString(), kFilled);
  ASSERT_TRUE(target.FromJsonString(R"({"HostType": "Kiosk"})"));
  EXPECT_EQ(source.HostType, "Desktop");
}

}  // namespace
