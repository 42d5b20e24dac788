#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthResponseMsg.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    RequestHostAuthResponseMsg;

TEST(RequestHostAuthResponseMsgTest, DefaultIsNotAuthenticatedWithoutErrorOrCacheId) {
  RequestHostAuthResponseMsg message;
  EXPECT_FALSE(message.IsAuthenticated);
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": null})");
}

TEST(RequestHostAuthResponseMsgTest, WritesTheOutcomeAndTheFailureRecord) {
  RequestHostAuthResponseMsg message;
  message.CacheId = "4";
  message.IsAuthenticated = true;
  message.Exception = ExceptionInfo(std::invalid_argument("user"));
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "4", "IsAuthenticated": true, )"
            R"("Exception": {"name": "std::invalid_argument", "message": "user"}})");
}

TEST(RequestHostAuthResponseMsgTest, ReadsEveryMember) {
  RequestHostAuthResponseMsg message;
  ASSERT_TRUE(
      message.FromJsonString(R"({"Version":"_2014_02","CacheId":"1","IsAuthenticated":true,)"
                             R"("Exception":{"name":"n","message":"m"}})"));
  EXPECT_EQ(message.CacheId, "1");
  EXPECT_TRUE(message.IsAuthenticated);
  EXPECT_EQ(message.Exception.name, "n");
  EXPECT_EQ(message.Exception.message, "m");
}

TEST(RequestHostAuthResponseMsgTest, CopyAndAssignmentSerialiseLikeTheOriginal) {
  RequestHostAuthResponseMsg original;
  original.IsAuthenticated = true;
  original.Exception.message = "m";
  RequestHostAuthResponseMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, )"
            R"("Exception": {"name": "", "message": "m"}})");
  copy.IsAuthenticated = false;
  copy.Exception.message.clear();
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": false, )"
            R"("Exception": null})");
  EXPECT_TRUE(original.IsAuthenticated);

  RequestHostAuthResponseMsg assigned;
  assigned = original;
  EXPECT_EQ(assigned.ToJsonString(), original.ToJsonString());
}

}  // namespace
