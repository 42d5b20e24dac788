#include "wevlin/infrastructure/services/core/_2014_07/InteropObjWithProperties.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
    InteropObjWithProperties;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::StringArrayProperty;

constexpr char kFilled[] =
    R"({"ObjRef": {"DBId": "db", "ObjId": "1", "ObjType": "Part"}, "Properties": [)"
    R"({"Name": "colour", "Values": ["red"]}, {"Name": "size", "Values": ["S", "M"]}]})";

InteropObjWithProperties Filled() {
  InteropObjWithProperties object;
  object.ObjRef = InteropObjRef("db", "1", "Part");
  object.Properties.push_back(StringArrayProperty("colour", {"red"}));
  object.Properties.push_back(StringArrayProperty("size", {"S", "M"}));
  return object;
}

TEST(InteropObjWithPropertiesTest, ADefaultRecordWritesAnEmptyReferenceAndNoProperties) {
  InteropObjWithProperties object;
  EXPECT_EQ(object.ToJsonString(),
            R"({"ObjRef": {"DBId": "", "ObjId": "", "ObjType": ""}, "Properties": []})");
}

TEST(InteropObjWithPropertiesTest, WritesTheReferenceAsANestedObject) {
  EXPECT_EQ(Filled().ToJsonString(), kFilled);
}

TEST(InteropObjWithPropertiesTest, ReadsTheReferenceAndTheProperties) {
  InteropObjWithProperties object;
  ASSERT_TRUE(object.FromJsonString(
      R"({"Properties":[{"Name":"colour","Values":["red"]},{"Name":"size","Values":["S","M"]}],)"
      R"("ObjRef":{"ObjType":"Part","ObjId":"1","DBId":"db"}})"));
  EXPECT_EQ(object.ObjRef.DBId, "db");
  EXPECT_EQ(object.ToJsonString(), kFilled);
}

TEST(InteropObjWithPropertiesTest, ANumberBetweenTwoPropertiesIsSkipped) {
  InteropObjWithProperties object;
  ASSERT_TRUE(object.FromJsonString(
      R"({"ObjRef": {"DBId": "db", "ObjId": "1", "ObjType": "Part"}, )"
      R"("Properties": [{"Name": "a", "Values": ["1"]}, 5, {"Name": "b", "Values": []}]})"));
  ASSERT_EQ(object.Properties.size(), 2u);
  EXPECT_EQ(object.Properties[0].Name, "a");
  EXPECT_EQ(object.Properties[0].Values, std::vector<std::string>{"1"});
  EXPECT_EQ(object.Properties[1].Name, "b");
  EXPECT_TRUE(object.Properties[1].Values.empty());
}

TEST(InteropObjWithPropertiesTest, APropertyWithMistypedValuesIsSkipped) {
  InteropObjWithProperties object;
  ASSERT_TRUE(object.FromJsonString(
      R"({"Properties": [{"Name": "a", "Values": "x"}, {"Name": "b", "Values": ["y"]}]})"));
  ASSERT_EQ(object.Properties.size(), 1u);
  EXPECT_EQ(object.Properties[0].Name, "b");
}

TEST(InteropObjWithPropertiesTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<InteropObjWithProperties>(Filled());
  InteropObjWithProperties copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), kFilled);
}

TEST(InteropObjWithPropertiesTest, ACopyReadsIntoItsOwnMembers) {
  InteropObjWithProperties original = Filled();
  InteropObjWithProperties copy(original);
  ASSERT_TRUE(copy.FromJsonString(
      R"({"ObjRef": {"DBId": "other"}, "Properties": [{"Name": "c", "Values": []}]})"));
  EXPECT_EQ(copy.ObjRef.DBId, "other");
  EXPECT_EQ(copy.Properties.size(), 3u);
  EXPECT_EQ(original.ToJsonString(), kFilled);
}

TEST(InteropObjWithPropertiesTest, CopyAssignmentReplacesTheReferenceAndTheProperties) {
  InteropObjWithProperties source = Filled();
  InteropObjWithProperties target;
  target.Properties.push_back(StringArrayProperty("old", {}));
  target = source;
  EXPECT_EQ(target.ToJsonString(), kFilled);
}

}  // namespace
