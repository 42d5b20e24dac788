#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationMsg.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::OpenLocation::_2014_02::OpenLocationMsg;

constexpr char kFilled[] = R"({"Version": "_2014_02", "location": "parts\/list", "OpenComponent": )"
                           R"([{"DBId": "db", "ObjId": "1", "ObjType": "Part"}]})";

TEST(OpenLocationMsgTest, ADefaultMessageWritesAnEmptyLocationAndNoObjects) {
  OpenLocationMsg message;
  EXPECT_EQ(message.GetVersion(), "_2014_02");
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_02", "location": "", "OpenComponent": []})");
}

TEST(OpenLocationMsgTest, TheLocationKeyIsLowerCase) {
  OpenLocationMsg message;
  message.location = "parts/list";
  message.OpenComponent.push_back(InteropObjRef("db", "1", "Part"));
  EXPECT_EQ(message.ToJsonString(), kFilled);

  OpenLocationMsg read;
  ASSERT_TRUE(read.FromJsonString(R"({"Location": "ignored", "location": "home"})"));
  EXPECT_EQ(read.location, "home");
}

TEST(OpenLocationMsgTest, ReadingSkipsObjectsThatDoNotParse) {
  OpenLocationMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"OpenComponent":[null,{"DBId":"db","ObjId":"1","ObjType":"Part"}],)"
      R"("location":"parts/list","Version":"_2014_02"})"));
  EXPECT_EQ(message.ToJsonString(), kFilled);
}

TEST(OpenLocationMsgTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<OpenLocationMsg>();
  original->location = "parts/list";
  original->OpenComponent.push_back(InteropObjRef("db", "1", "Part"));
  OpenLocationMsg copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), kFilled);
}

TEST(OpenLocationMsgTest, ACopyReadsIntoItsOwnMembers) {
  OpenLocationMsg original;
  OpenLocationMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"location": "x", "OpenComponent": [{"ObjId": "2"}]})"));
  EXPECT_EQ(copy.location, "x");
  EXPECT_EQ(copy.OpenComponent.size(), 1u);
  EXPECT_EQ(original.ToJsonString(),
            R"({"Version": "_2014_02", "location": "", "OpenComponent": []})");
}

TEST(OpenLocationMsgTest, CopyAssignmentReplacesTheValues) {
  OpenLocationMsg source;
  source.location = "parts/list";
  source.OpenComponent.push_back(InteropObjRef("db", "1", "Part"));
  OpenLocationMsg target;
  target.location = "old";
  target.OpenComponent.push_back(InteropObjRef("a", "b", "c"));
  target.OpenComponent.push_back(InteropObjRef("d", "e", "f"));
  target = source;
  EXPECT_EQ(target.ToJsonString(), kFilled);
}

}  // namespace
