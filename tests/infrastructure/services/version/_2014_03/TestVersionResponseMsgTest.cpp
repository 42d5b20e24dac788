#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03::
    TestVersionResponseMsg;

TEST(TestVersionResponseMsgTest, DefaultWritesEmptyTextsAndResultFalse) {
  TestVersionResponseMsg message;
  EXPECT_FALSE(message.Result);
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "", "ServiceVersion": "", "Result": false})");
}

TEST(TestVersionResponseMsgTest, ReadsTheTextsAndTheResult) {
  TestVersionResponseMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"ServiceName":"s","ServiceVersion":"_2014_03","Result":true,"Version":"_2014_03"})"));
  EXPECT_EQ(message.ServiceName, "s");
  EXPECT_EQ(message.ServiceVersion, "_2014_03");
  EXPECT_TRUE(message.Result);
}

TEST(TestVersionResponseMsgTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  TestVersionResponseMsg original;
  original.ServiceName = "n";
  original.Result = true;
  TestVersionResponseMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "n", "ServiceVersion": "", "Result": true})");
  copy.Result = false;
  EXPECT_TRUE(original.Result);
  EXPECT_EQ(
      copy.ToJsonString(),
      R"({"Version": "_2014_03", "ServiceName": "n", "ServiceVersion": "", "Result": false})");
  TestVersionResponseMsg assigned;
  assigned = original;
  EXPECT_EQ(assigned.ToJsonString(), original.ToJsonString());
}

}  // namespace
