#include "wevlin/infrastructure/services/Pair.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;

TEST(PairTest, ADefaultPairWritesBothMembersEmpty) {
  Pair pair;
  EXPECT_EQ(pair.Key, "");
  EXPECT_EQ(pair.Value, "");
  EXPECT_EQ(pair.ToJsonString(), R"({"Key": "", "Value": ""})");
}

TEST(PairTest, APairBuiltFromKeyAndValueWritesExactlyKeyAndValue) {
  Pair pair("k", "v");
  EXPECT_EQ(pair.Key, "k");
  EXPECT_EQ(pair.Value, "v");
  EXPECT_EQ(pair.ToJsonString(), R"({"Key": "k", "Value": "v"})");
}

TEST(PairTest, TextsAreEscapedOnWriting) {
  Pair pair("a/b", "say \"hi\"\n");
  EXPECT_EQ(pair.ToJsonString(), R"({"Key": "a\/b", "Value": "say \"hi\"\n"})");
}

TEST(PairTest, ReadsKeyAndValueAndIgnoresOtherMembers) {
  Pair pair;
  EXPECT_TRUE(pair.FromJsonString(R"({"Value": "1", "Version": "_2014_07", "Key": "a"})"));
  EXPECT_EQ(pair.Key, "a");
  EXPECT_EQ(pair.Value, "1");
  EXPECT_EQ(pair.ToJsonString(), R"({"Key": "a", "Value": "1"})");
}

TEST(PairTest, AnAbsentMemberKeepsItsValue) {
  Pair pair("k", "v");
  EXPECT_TRUE(pair.FromJsonString(R"({"Key": "n"})"));
  EXPECT_EQ(pair.Key, "n");
  EXPECT_EQ(pair.Value, "v");
}

TEST(PairTest, AValueThatIsNoStringIsKeptVerbatim) {
  Pair pair;
  EXPECT_TRUE(pair.FromJsonString(R"({"Key": "n", "Value": 7})"));
  EXPECT_EQ(pair.Value, "7");
}

TEST(PairTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  Pair original("k", "v");
  Pair copy(original);
  EXPECT_EQ(copy.Key, "k");
  EXPECT_EQ(copy.Value, "v");
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());
}

TEST(PairTest, ACopyReadsIntoItsOwnMembers) {
  Pair original("k", "v");
  Pair copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Key": "c", "Value": "d"})"));
  EXPECT_EQ(copy.ToJsonString(), R"({"Key": "c", "Value": "d"})");
  EXPECT_EQ(original.ToJsonString(), R"({"Key": "k", "Value": "v"})");
}

TEST(PairTest, CopyAssignmentCopiesBothTexts) {
  Pair source("k", "v");
  Pair target("x", "y");
  target = source;
  EXPECT_EQ(target.ToJsonString(), R"({"Key": "k", "Value": "v"})");
  ASSERT_TRUE(target.FromJsonString(R"({"Key": "z"})"));
  EXPECT_EQ(source.Key, "k");

  Pair& alias = target;
  target = alias;
  EXPECT_EQ(target.ToJsonString(), R"({"Key": "z", "Value": "v"})");
}

TEST(PairTest, OriginalAndCopyMayBeDestroyedInEitherOrder) {
  auto original = std::make_unique<Pair>("k", "v");
  auto copy = std::make_unique<Pair>(*original);
  original.reset();
  EXPECT_EQ(copy->ToJsonString(), R"({"Key": "k", "Value": "v"})");
}

}  // namespace
