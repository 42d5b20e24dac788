#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"

#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/interop/DataContract.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataContract;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;

static_assert(std::is_base_of_v<DataContract, InteropObjRef>, "a plain data contract");

TEST(InteropObjRefTest, ADefaultReferenceWritesThreeEmptyTextsAndNoVersion) {
  InteropObjRef ref;
  EXPECT_EQ(ref.ToJsonString(), R"({"DBId": "", "ObjId": "", "ObjType": ""})");
}

TEST(InteropObjRefTest, WritesItsMembersInRegistrationOrder) {
  InteropObjRef ref("db1", "42", "Part");
  EXPECT_EQ(ref.DBId, "db1");
  EXPECT_EQ(ref.ObjId, "42");
  EXPECT_EQ(ref.ObjType, "Part");
  EXPECT_EQ(ref.ToJsonString(), R"({"DBId": "db1", "ObjId": "42", "ObjType": "Part"})");
}

TEST(InteropObjRefTest, ReadsItsMembersWhateverTheirOrder) {
  InteropObjRef ref;
  EXPECT_TRUE(ref.FromJsonString(R"({"ObjType":"Doc","DBId":"main","ObjId":"7"})"));
  EXPECT_EQ(ref.ToJsonString(), R"({"DBId": "main", "ObjId": "7", "ObjType": "Doc"})");
}

TEST(InteropObjRefTest, AnAbsentMemberKeepsItsValue) {
  InteropObjRef ref("db1", "42", "Part");
  EXPECT_TRUE(ref.FromJsonString(R"({"ObjId": "43"})"));
  EXPECT_EQ(ref.ToJsonString(), R"({"DBId": "db1", "ObjId": "43", "ObjType": "Part"})");
}

TEST(InteropObjRefTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<InteropObjRef>("db1", "42", "Part");
  InteropObjRef copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), R"({"DBId": "db1", "ObjId": "42", "ObjType": "Part"})");
}

TEST(InteropObjRefTest, ACopyReadsIntoItsOwnMembers) {
  InteropObjRef original("db1", "42", "Part");
  InteropObjRef copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"DBId": "db2"})"));
  EXPECT_EQ(copy.DBId, "db2");
  EXPECT_EQ(original.DBId, "db1");
}

TEST(InteropObjRefTest, CopyAssignmentCopiesTheValues) {
  InteropObjRef source("db1", "42", "Part");
  InteropObjRef target;
  target = source;
  EXPECT_EQ(target.ToJsonString(), R"({"DBId": "db1", "ObjId": "42", "ObjType": "Part"})");
  ASSERT_TRUE(target.FromJsonString(R"({"ObjType": "Doc"})"));
  EXPECT_EQ(source.ObjType, "Part");
}

}  // namespace
