#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonResponseMsg.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/interop/ExceptionInfo.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaJsonResponseMsg;

TEST(SoaJsonResponseMsgTest, DefaultIsVersion2014_02WithAnEmptyRecordWrittenNull) {
  SoaJsonResponseMsg message;
  EXPECT_EQ(message.GetVersion(), "_2014_02");
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "", "SoaResponse": "", "Exception": null})");
}

TEST(SoaJsonResponseMsgTest, TakesTheVersionGivenToTheConstructor) {
  SoaJsonResponseMsg message("_2014_07");
  message.CacheId = "7";
  message.SoaResponse = "eyJhIjogMX0=";
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_07", "CacheId": "7", "SoaResponse": "eyJhIjogMX0=", )"
            R"("Exception": null})");
}

TEST(SoaJsonResponseMsgTest, WritesAFailureRecordAsAnObject) {
  SoaJsonResponseMsg message("_2015_10");
  message.CacheId = "9";
  message.Exception = ExceptionInfo(std::runtime_error("server down"));
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2015_10", "CacheId": "9", "SoaResponse": "", )"
            R"("Exception": {"name": "std::runtime_error", "message": "server down"}})");
}

TEST(SoaJsonResponseMsgTest, ReadsAFailureRecord) {
  SoaJsonResponseMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"Version": "_2014_07", "CacheId": "3", "SoaResponse": "e30=", )"
      R"("Exception": {"name": "std::invalid_argument", "message": "bad"}})"));
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_EQ(message.CacheId, "3");
  EXPECT_EQ(message.SoaResponse, "e30=");
  EXPECT_EQ(message.Exception.name, "std::invalid_argument");
  EXPECT_EQ(message.Exception.message, "bad");
}

TEST(SoaJsonResponseMsgTest, CopySerialisesLikeTheOriginalAndIsIndependent) {
  SoaJsonResponseMsg original("_2014_07");
  original.CacheId = "c";
  original.SoaResponse = "s";
  original.Exception.name = "n";
  original.Exception.message = "m";
  SoaJsonResponseMsg copy(original);
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
  EXPECT_EQ(copy.ToJsonString(), R"({"Version": "_2014_07", "CacheId": "c", "SoaResponse": "s", )"
                                 R"("Exception": {"name": "n", "message": "m"}})");
  copy.Exception.message = "other";
  EXPECT_EQ(original.Exception.message, "m");
  EXPECT_EQ(copy.ToJsonString(), R"({"Version": "_2014_07", "CacheId": "c", "SoaResponse": "s", )"
                                 R"("Exception": {"name": "n", "message": "other"}})");
}

TEST(SoaJsonResponseMsgTest, AssignmentCopiesEveryValueIncludingTheVersion) {
  SoaJsonResponseMsg source("_2015_10");
  source.CacheId = "c";
  source.Exception.name = "n";
  SoaJsonResponseMsg target;
  target.SoaResponse = "old";
  target = source;
  EXPECT_EQ(target.ToJsonString(), source.ToJsonString());
  EXPECT_EQ(target.ToJsonString(), R"({"Version": "_2015_10", "CacheId": "c", "SoaResponse": "", )"
                                   R"("Exception": {"name": "n", "message": ""}})");
}

}  // namespace
