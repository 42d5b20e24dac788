#include "wevlin/infrastructure/services/core/_2014_10/InteropObjRef.h"

#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_10::InteropObjRef;

static_assert(std::is_same_v<decltype(InteropObjRef::UID_TYPE()), std::string>,
              "each call returns a string of its own");

TEST(InteropObjRefTest, TheKindNamesAreExact) {
  EXPECT_EQ(InteropObjRef::UID_TYPE(), "UID");
  EXPECT_EQ(InteropObjRef::OCCURRENCE_TYPE(), "Occurrence");
  EXPECT_EQ(InteropObjRef::OCCURRENCE2_TYPE(), "Occurrence2");
  EXPECT_EQ(InteropObjRef::OCCURRENCE2_TYPE().size(), 11u);
}

TEST(InteropObjRefTest, EachCallReturnsANewString) {
  std::string first = InteropObjRef::UID_TYPE();
  first += "x";
  EXPECT_EQ(InteropObjRef::UID_TYPE(), "UID");
}

TEST(InteropObjRefTest, ADefaultReferenceWritesTwoEmptyTextsAndNoVersion) {
  InteropObjRef ref;
  EXPECT_EQ(ref.ToJsonString(), R"({"Type": "", "Data": ""})");
}

TEST(InteropObjRefTest, WritesTypeThenData) {
  InteropObjRef ref(InteropObjRef::OCCURRENCE2_TYPE(), "abc/1");
  EXPECT_EQ(ref.ToJsonString(), R"({"Type": "Occurrence2", "Data": "abc\/1"})");
}

TEST(InteropObjRefTest, ReadsTypeAndData) {
  InteropObjRef ref;
  ASSERT_TRUE(ref.FromJsonString(R"({"Data":"u-1","Type":"UID"})"));
  EXPECT_EQ(ref.Type, "UID");
  EXPECT_EQ(ref.Data, "u-1");
}

TEST(InteropObjRefTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<InteropObjRef>("UID", "u-1");
  InteropObjRef copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), R"({"Type": "UID", "Data": "u-1"})");
}

TEST(InteropObjRefTest, ACopyReadsIntoItsOwnMembers) {
  InteropObjRef original("UID", "u-1");
  InteropObjRef copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Data": "u-2"})"));
  EXPECT_EQ(copy.Data, "u-2");
  EXPECT_EQ(original.Data, "u-1");
}

TEST(InteropObjRefTest, CopyAssignmentCopiesTheValues) {
  InteropObjRef source("Occurrence", "o-1");
  InteropObjRef target;
  target = source;
  EXPECT_EQ(target.ToJsonString(), R"({"Type": "Occurrence", "Data": "o-1"})");
}

}  // namespace
