#include "wevlin/infrastructure/services/version/_2014_02/TestVersionInputMsg.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::TestVersionInputMsg;

TEST(TestVersionInputMsgTest, DefaultWritesVersionAndTwoEmptyTexts) {
  TestVersionInputMsg message;
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "ServiceName": "", "ServiceVersion": ""})");
}

TEST(TestVersionInputMsgTest, ReadsBothTexts) {
  TestVersionInputMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"));
  EXPECT_EQ(message.ServiceName, "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(message.ServiceVersion, "_2014_02");
}

TEST(TestVersionInputMsgTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  TestVersionInputMsg original;
  original.ServiceName = "n";
  original.ServiceVersion = "v";
  TestVersionInputMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  copy.ServiceName = "m";
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "ServiceName": "m", "ServiceVersion": "v"})");
  EXPECT_EQ(original.ServiceName, "n");
  TestVersionInputMsg assigned;
  assigned = copy;
  EXPECT_EQ(assigned.ToJsonString(), copy.ToJsonString());
}

}  // namespace
