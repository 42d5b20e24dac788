#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthRequestMessage.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::AsyncIncomingMessageData;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    RequestHostAuthRequestMessage;

static_assert(std::is_base_of_v<AsyncIncomingMessageData, RequestHostAuthRequestMessage>);

TEST(RequestHostAuthRequestMessageTest, CarriesOnlyVersionCacheIdAndReplyDescriptor) {
  RequestHostAuthRequestMessage message;
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "ReplyServiceDescriptor": ""})");
}

TEST(RequestHostAuthRequestMessageTest, ReadsTheRoutingAndIgnoresOtherKeys) {
  RequestHostAuthRequestMessage message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"CacheId":"7","ReplyServiceDescriptor":"{}","ServiceName":"x","Version":"_2014_02"})"));
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "7", "ReplyServiceDescriptor": "{}"})");
}

TEST(RequestHostAuthRequestMessageTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  RequestHostAuthRequestMessage original;
  original.CacheId = "c";
  original.ReplyServiceDescriptor = "d";
  RequestHostAuthRequestMessage copy(original);
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "c", "ReplyServiceDescriptor": "d"})");
  copy.CacheId = "e";
  EXPECT_EQ(original.CacheId, "c");
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "e", "ReplyServiceDescriptor": "d"})");

  RequestHostAuthRequestMessage assigned;
  assigned = copy;
  EXPECT_EQ(assigned.ToJsonString(), copy.ToJsonString());
}

}  // namespace
