#include "wevlin/infrastructure/services/version/_2014_03/TestVersionInputMsg.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03::TestVersionInputMsg;

TEST(TestVersionInputMsgTest, DefaultWritesVersionAndThreeEmptyTexts) {
  TestVersionInputMsg message;
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "", "ServiceVersion": "", "ExtraInfo": ""})");
}

TEST(TestVersionInputMsgTest, ReadsAllThreeTexts) {
  TestVersionInputMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_03","ExtraInfo":"Extra Info","Version":"_2014_03"})"));
  EXPECT_EQ(message.ServiceName, "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(message.ServiceVersion, "_2014_03");
  EXPECT_EQ(message.ExtraInfo, "Extra Info");
}

TEST(TestVersionInputMsgTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  TestVersionInputMsg original;
  original.ServiceName = "n";
  original.ServiceVersion = "v";
  original.ExtraInfo = "e";
  TestVersionInputMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  copy.ExtraInfo = "f";
  EXPECT_EQ(
      copy.ToJsonString(),
      R"({"Version": "_2014_03", "ServiceName": "n", "ServiceVersion": "v", "ExtraInfo": "f"})");
  EXPECT_EQ(original.ExtraInfo, "e");
  TestVersionInputMsg assigned;
  assigned = copy;
  EXPECT_EQ(assigned.ToJsonString(), copy.ToJsonString());
}

}  // namespace
