#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02::
    TestVersionResponseMsg;

TEST(TestVersionResponseMsgTest, DefaultWritesVersionAndTwoEmptyTexts) {
  TestVersionResponseMsg message;
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "ServiceName": "", "ServiceVersion": ""})");
}

TEST(TestVersionResponseMsgTest, ReadsBothTexts) {
  TestVersionResponseMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"ServiceName":"tavo.wevlin.infrastructure.services.version.TestVersionSvc","ServiceVersion":"_2014_02","Version":"_2014_02"})"));
  EXPECT_EQ(message.ServiceName, "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(message.ServiceVersion, "_2014_02");
}

TEST(TestVersionResponseMsgTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  TestVersionResponseMsg original;
  original.ServiceName = "n";
  original.ServiceVersion = "v";
  TestVersionResponseMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  copy.ServiceName = "m";
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "ServiceName": "m", "ServiceVersion": "v"})");
  EXPECT_EQ(original.ServiceName, "n");
  TestVersionResponseMsg assigned;
  assigned = copy;
  EXPECT_EQ(assigned.ToJsonString(), copy.ToJsonString());
}

}  // namespace
