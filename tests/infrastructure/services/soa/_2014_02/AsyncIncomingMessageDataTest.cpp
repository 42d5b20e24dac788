#include "wevlin/infrastructure/services/soa/_2014_02/AsyncIncomingMessageData.h"

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::AsyncIncomingMessageData;

TEST(AsyncIncomingMessageDataTest, DefaultWritesVersionThenBothTextsEmpty) {
  AsyncIncomingMessageData message;
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "ReplyServiceDescriptor": ""})");
  EXPECT_EQ(message.GetVersion(), "_2014_02");
}

TEST(AsyncIncomingMessageDataTest, ReadsBothTextsAndTheVersion) {
  AsyncIncomingMessageData message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"CacheId":"7","ReplyServiceDescriptor":"{\"FQN\":\"a.b.client\",\"SvcVersion\":\"_2014_02\"}","Version":"_2015_10"})"));
  EXPECT_EQ(message.CacheId, "7");
  EXPECT_EQ(message.ReplyServiceDescriptor, R"({"FQN":"a.b.client","SvcVersion":"_2014_02"})");
  EXPECT_EQ(message.GetVersion(), "_2015_10");
}

TEST(AsyncIncomingMessageDataTest, CopySerialisesLikeTheOriginalAndIsIndependent) {
  AsyncIncomingMessageData original;
  original.CacheId = "c1";
  original.ReplyServiceDescriptor = "d1";
  ASSERT_TRUE(original.FromJsonString(R"({"Version": "_2014_07"})"));

  AsyncIncomingMessageData copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_07", "CacheId": "c1", "ReplyServiceDescriptor": "d1"})");

  // The copy's fields are bound to the copy's own members.
  copy.CacheId = "c2";
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_07", "CacheId": "c2", "ReplyServiceDescriptor": "d1"})");
  EXPECT_EQ(original.CacheId, "c1");
}

TEST(AsyncIncomingMessageDataTest, AssignmentCopiesEveryValueIncludingTheVersion) {
  AsyncIncomingMessageData source;
  ASSERT_TRUE(source.FromJsonString(
      R"({"Version": "_2015_10", "CacheId": "x", "ReplyServiceDescriptor": "y"})"));
  AsyncIncomingMessageData target;
  target = source;
  EXPECT_EQ(target.ToJsonString(),
            R"({"Version": "_2015_10", "CacheId": "x", "ReplyServiceDescriptor": "y"})");
  target.ReplyServiceDescriptor = "z";
  EXPECT_EQ(source.ReplyServiceDescriptor, "y");
}

}  // namespace
