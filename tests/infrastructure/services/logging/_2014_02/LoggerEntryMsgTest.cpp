#include "wevlin/infrastructure/services/logging/_2014_02/LoggerEntryMsg.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02::LoggerEntryMsg;

TEST(LoggerEntryMsgTest, DefaultWritesVersionAndTwoEmptyTexts) {
  LoggerEntryMsg message;
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2014_02", "FormatMessage": "", "Level": ""})");
}

TEST(LoggerEntryMsgTest, ReadsTextAndLevelUnchanged) {
  LoggerEntryMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"FormatMessage":"page loaded in 12 ms","Level":"Verbose!","Version":"_2014_02"})"));
  EXPECT_EQ(message.FormatMessage, "page loaded in 12 ms");
  EXPECT_EQ(message.Level, "Verbose!");
}

TEST(LoggerEntryMsgTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  LoggerEntryMsg original;
  original.FormatMessage = "m";
  original.Level = "l";
  LoggerEntryMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  copy.Level = "k";
  EXPECT_EQ(copy.ToJsonString(), R"({"Version": "_2014_02", "FormatMessage": "m", "Level": "k"})");
  EXPECT_EQ(original.Level, "l");
  LoggerEntryMsg assigned;
  assigned = copy;
  EXPECT_EQ(assigned.ToJsonString(), copy.ToJsonString());
}

}  // namespace
