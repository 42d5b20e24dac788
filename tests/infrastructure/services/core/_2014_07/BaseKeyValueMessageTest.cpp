#include "wevlin/infrastructure/services/core/_2014_07/BaseKeyValueMessage.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "wevlin/infrastructure/services/Pair.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::BaseKeyValueMessage;
using wevlin_test::ThrowsExactly;

TEST(BaseKeyValueMessageTest, ADefaultMessageWritesAnEmptyDataList) {
  BaseKeyValueMessage message;
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_TRUE(message.Data.empty());
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2014_07", "Data": []})");
}

TEST(BaseKeyValueMessageTest, WritesThePairsInOrder) {
  BaseKeyValueMessage message;
  message.Data.push_back(Pair("b", "2"));
  message.Data.push_back(Pair("a", "1"));
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_07", "Data": [{"Key": "b", "Value": "2"}, )"
            R"({"Key": "a", "Value": "1"}]})");
}

TEST(BaseKeyValueMessageTest, AnElementThatIsNoPairIsSkipped) {
  BaseKeyValueMessage message;
  EXPECT_TRUE(message.FromJsonString(
      R"({"Data":[{"Key":"a","Value":"1"},7,{"Key":"b","Value":"2"}],"Version":"_2014_07"})"));
  ASSERT_EQ(message.Data.size(), 2u);
  EXPECT_EQ(message.Data[0].Key, "a");
  EXPECT_EQ(message.Data[0].Value, "1");
  EXPECT_EQ(message.Data[1].Key, "b");
  EXPECT_EQ(message.Data[1].Value, "2");
}

TEST(BaseKeyValueMessageTest, NullsStringsAndArraysAmongThePairsAreSkipped) {
  BaseKeyValueMessage message;
  EXPECT_TRUE(message.FromJsonString(
      R"({"Data": [null, "x", {"Key": "a", "Value": "1"}, [1], {"Key": "b"}]})"));
  ASSERT_EQ(message.Data.size(), 2u);
  EXPECT_EQ(message.Data[0].ToJsonString(), R"({"Key": "a", "Value": "1"})");
  EXPECT_EQ(message.Data[1].ToJsonString(), R"({"Key": "b", "Value": ""})");
}

TEST(BaseKeyValueMessageTest, ReadingAppendsToThePairsAlreadyHeld) {
  BaseKeyValueMessage message;
  message.Data.push_back(Pair("x", "0"));
  ASSERT_TRUE(message.FromJsonString(R"({"Data": [{"Key": "a", "Value": "1"}]})"));
  ASSERT_EQ(message.Data.size(), 2u);
  EXPECT_EQ(message.Data[0].Key, "x");
  EXPECT_EQ(message.Data[1].Key, "a");
}

TEST(BaseKeyValueMessageTest, AnotherVersionIsAccepted) {
  BaseKeyValueMessage message;
  EXPECT_TRUE(message.FromJsonString(R"({"Version": "_2014_02", "Data": []})"));
  EXPECT_EQ(message.GetVersion(), "_2014_02");
}

TEST(BaseKeyValueMessageTest, DataThatIsNoArrayThrows) {
  BaseKeyValueMessage message;
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { message.FromJsonString(R"({"Data": 5})"); },
                                                "JSON data is not an array"));
  EXPECT_TRUE(message.Data.empty());
}

TEST(BaseKeyValueMessageTest, ACopyKeepsThePairsAndSerialisesLikeTheOriginal) {
  BaseKeyValueMessage original;
  ASSERT_TRUE(
      original.FromJsonString(R"({"Version": "_2014_03", "Data": [{"Key": "a", "Value": "1"}]})"));
  BaseKeyValueMessage copy(original);
  EXPECT_EQ(copy.GetVersion(), "_2014_03");
  ASSERT_EQ(copy.Data.size(), 1u);
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_03", "Data": [{"Key": "a", "Value": "1"}]})");
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
}

TEST(BaseKeyValueMessageTest, ACopyReadsIntoItsOwnList) {
  BaseKeyValueMessage original;
  original.Data.push_back(Pair("a", "1"));
  BaseKeyValueMessage copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Data": [{"Key": "b", "Value": "2"}]})"));
  EXPECT_EQ(copy.Data.size(), 2u);
  ASSERT_EQ(original.Data.size(), 1u);
  EXPECT_EQ(original.ToJsonString(),
            R"({"Version": "_2014_07", "Data": [{"Key": "a", "Value": "1"}]})");
}

TEST(BaseKeyValueMessageTest, CopyAssignmentReplacesTheList) {
  BaseKeyValueMessage source;
  source.Data.push_back(Pair("a", "1"));
  source.Data.push_back(Pair("b", "2"));
  BaseKeyValueMessage target;
  target.Data.push_back(Pair("x", "9"));
  target = source;
  EXPECT_EQ(target.ToJsonString(), source.ToJsonString());
  ASSERT_EQ(target.Data.size(), 2u);
  EXPECT_EQ(target.Data[0].Key, "a");
  EXPECT_EQ(target.Data[1].Key, "b");

  BaseKeyValueMessage& alias = target;
  target = alias;
  EXPECT_EQ(target.Data.size(), 2u);
}

TEST(BaseKeyValueMessageTest, OriginalAndCopyMayBeDestroyedInEitherOrder) {
  // The copy outlives the original, which ends with the lambda.
  BaseKeyValueMessage copy = [] {
    BaseKeyValueMessage original;
    original.Data.push_back(Pair("a", "1"));
    return BaseKeyValueMessage(original);
  }();
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_07", "Data": [{"Key": "a", "Value": "1"}]})");

  // The original outlives its copy.
  {
    BaseKeyValueMessage second(copy);
    EXPECT_EQ(second.ToJsonString(), copy.ToJsonString());
  }
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_07", "Data": [{"Key": "a", "Value": "1"}]})");
}

}  // namespace
