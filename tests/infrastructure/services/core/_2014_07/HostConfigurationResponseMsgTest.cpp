#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationResponseMsg.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/services/Pair.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
    HostConfigurationResponseMsg;

TEST(HostConfigurationResponseMsgTest, WithoutSettingsWritesAnEmptyArray) {
  HostConfigurationResponseMsg message;
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2014_07", "Settings": []})");
}

TEST(HostConfigurationResponseMsgTest, WritesTheSettingsInOrder) {
  HostConfigurationResponseMsg message;
  message.Settings.push_back(Pair("Theme", "dark"));
  message.Settings.push_back(Pair("AllowGoHome", "true"));
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_07", "Settings": [{"Key": "Theme", "Value": "dark"}, )"
            R"({"Key": "AllowGoHome", "Value": "true"}]})");
}

TEST(HostConfigurationResponseMsgTest, ReadingSkipsElementsThatAreNoPairs) {
  HostConfigurationResponseMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"Settings":[{"Key":"a","Value":"1"},true,{"Key":"b","Value":"2"}],"Version":"_2014_07"})"));
  ASSERT_EQ(message.Settings.size(), 2u);
  EXPECT_EQ(message.Settings[0].ToJsonString(), R"({"Key": "a", "Value": "1"})");
  EXPECT_EQ(message.Settings[1].ToJsonString(), R"({"Key": "b", "Value": "2"})");
}

TEST(HostConfigurationResponseMsgTest, TheListIsReadOnlyUnderSettings) {
  HostConfigurationResponseMsg message;
  ASSERT_TRUE(message.FromJsonString(R"({"Data": [{"Key": "a", "Value": "1"}]})"));
  EXPECT_TRUE(message.Settings.empty());
}

TEST(HostConfigurationResponseMsgTest, ACopyKeepsTheSettingsAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<HostConfigurationResponseMsg>();
  original->Settings.push_back(Pair("k", "v"));
  HostConfigurationResponseMsg copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_07", "Settings": [{"Key": "k", "Value": "v"}]})");
}

TEST(HostConfigurationResponseMsgTest, ACopyReadsIntoItsOwnList) {
  HostConfigurationResponseMsg original;
  HostConfigurationResponseMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Settings": [{"Key": "k", "Value": "v"}]})"));
  EXPECT_EQ(copy.Settings.size(), 1u);
  EXPECT_TRUE(original.Settings.empty());
}

TEST(HostConfigurationResponseMsgTest, CopyAssignmentReplacesTheSettings) {
  HostConfigurationResponseMsg source;
  source.Settings.push_back(Pair("a", "1"));
  HostConfigurationResponseMsg target;
  target.Settings.push_back(Pair("x", "9"));
  target.Settings.push_back(Pair("y", "8"));
  target = source;
  EXPECT_EQ(target.ToJsonString(),
            R"({"Version": "_2014_07", "Settings": [{"Key": "a", "Value": "1"}]})");
}

}  // namespace
