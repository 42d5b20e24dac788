#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaJsonRequestMsg;

TEST(SoaJsonRequestMsgTest, DefaultWritesEveryKeyInRegistrationOrder) {
  SoaJsonRequestMsg message;
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "ReplyServiceDescriptor": "", )"
            R"("ServiceName": "", "OperationName": "", "Message": ""})");
}

TEST(SoaJsonRequestMsgTest, ReadsAllFiveTexts) {
  SoaJsonRequestMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"Version":"_2014_07","CacheId":"42","ReplyServiceDescriptor":"{}",)"
      R"("ServiceName":"Orders","OperationName":"List","Message":"{\"page\": 2}"})"));
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_EQ(message.CacheId, "42");
  EXPECT_EQ(message.ReplyServiceDescriptor, "{}");
  EXPECT_EQ(message.ServiceName, "Orders");
  EXPECT_EQ(message.OperationName, "List");
  EXPECT_EQ(message.Message, R"({"page": 2})");
}

TEST(SoaJsonRequestMsgTest, MissingKeysKeepTheirValues) {
  SoaJsonRequestMsg message;
  message.ServiceName = "kept";
  ASSERT_TRUE(message.FromJsonString(R"({"CacheId": "1"})"));
  EXPECT_EQ(message.ServiceName, "kept");
  EXPECT_EQ(message.CacheId, "1");
  EXPECT_EQ(message.GetVersion(), "_2014_02");
}

TEST(SoaJsonRequestMsgTest, CopySerialisesLikeTheOriginalAndIsIndependent) {
  SoaJsonRequestMsg original;
  ASSERT_TRUE(original.FromJsonString(
      R"({"Version": "_2015_10", "CacheId": "c", "ReplyServiceDescriptor": "r", )"
      R"("ServiceName": "s", "OperationName": "o", "Message": "m"})"));
  SoaJsonRequestMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2015_10", "CacheId": "c", "ReplyServiceDescriptor": "r", )"
            R"("ServiceName": "s", "OperationName": "o", "Message": "m"})");
  copy.Message = "changed";
  EXPECT_EQ(original.Message, "m");
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2015_10", "CacheId": "c", "ReplyServiceDescriptor": "r", )"
            R"("ServiceName": "s", "OperationName": "o", "Message": "changed"})");
}

TEST(SoaJsonRequestMsgTest, AssignmentCopiesEveryValue) {
  SoaJsonRequestMsg source;
  ASSERT_TRUE(source.FromJsonString(
      R"({"Version": "_2014_07", "CacheId": "c", "ServiceName": "s", "OperationName": "o"})"));
  SoaJsonRequestMsg target;
  target.Message = "old";
  target = source;
  EXPECT_EQ(target.ToJsonString(), source.ToJsonString());
  EXPECT_EQ(target.GetVersion(), "_2014_07");
  EXPECT_EQ(target.Message, "");
}

}  // namespace
