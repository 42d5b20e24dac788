#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::StringArrayProperty;

TEST(StringArrayPropertyTest, ADefaultPropertyWritesAnEmptyNameAndNoValues) {
  StringArrayProperty property;
  EXPECT_EQ(property.ToJsonString(), R"({"Name": "", "Values": []})");
}

TEST(StringArrayPropertyTest, WritesTheNameAndTheValuesInOrder) {
  StringArrayProperty property("colour", {"red", "a/b", "say \"x\""});
  EXPECT_EQ(property.ToJsonString(),
            R"({"Name": "colour", "Values": ["red", "a\/b", "say \"x\""]})");
}

TEST(StringArrayPropertyTest, ReadsTheNameAndTheValues) {
  StringArrayProperty property;
  ASSERT_TRUE(property.FromJsonString(R"({"Values":["a","b"],"Name":"n"})"));
  EXPECT_EQ(property.Name, "n");
  EXPECT_EQ(property.Values, (std::vector<std::string>{"a", "b"}));
}

TEST(StringArrayPropertyTest, ReadingAppendsToTheValuesAlreadyHeld) {
  StringArrayProperty property("n", {"a", "b"});
  ASSERT_TRUE(property.FromJsonString(R"({"Values": ["c"]})"));
  EXPECT_EQ(property.Values, (std::vector<std::string>{"a", "b", "c"}));
}

TEST(StringArrayPropertyTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<StringArrayProperty>("n", std::vector<std::string>{"a"});
  StringArrayProperty copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), R"({"Name": "n", "Values": ["a"]})");
}

TEST(StringArrayPropertyTest, ACopyReadsIntoItsOwnMembers) {
  StringArrayProperty original("n", {"a"});
  StringArrayProperty copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Name": "m", "Values": ["b"]})"));
  EXPECT_EQ(copy.ToJsonString(), R"({"Name": "m", "Values": ["a", "b"]})");
  EXPECT_EQ(original.ToJsonString(), R"({"Name": "n", "Values": ["a"]})");
}

TEST(StringArrayPropertyTest, CopyAssignmentReplacesTheValues) {
  StringArrayProperty source("n", {"a", "b"});
  StringArrayProperty target("t", {"x", "y", "z"});
  target = source;
  EXPECT_EQ(target.ToJsonString(), R"({"Name": "n", "Values": ["a", "b"]})");
}

}  // namespace
