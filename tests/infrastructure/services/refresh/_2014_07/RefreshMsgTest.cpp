#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/InteropObjWithProperties.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::
    InteropObjWithProperties;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::StringArrayProperty;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshMsg;

constexpr char kEmpty[] =
    R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
    R"("DeletedObjects": [], "PlainObjects": [], "ChildChangeObjects": [], "DataObjects": []})";

constexpr char kFilled[] =
    R"({"Version": "_2014_07", )"
    R"("CreatedObjects": [{"DBId": "db", "ObjId": "c", "ObjType": "T"}], )"
    R"("UpdatedObjects": [{"DBId": "db", "ObjId": "u", "ObjType": "T"}], )"
    R"("DeletedObjects": [{"DBId": "db", "ObjId": "d", "ObjType": "T"}], )"
    R"("PlainObjects": [{"DBId": "db", "ObjId": "p", "ObjType": "T"}], )"
    R"("ChildChangeObjects": [{"DBId": "db", "ObjId": "k", "ObjType": "T"}], )"
    R"("DataObjects": [{"ObjRef": {"DBId": "db", "ObjId": "o", "ObjType": "T"}, )"
    R"("Properties": [{"Name": "n", "Values": ["v"]}]}]})";

RefreshMsg Filled() {
  RefreshMsg message;
  message.CreatedObjects.push_back(InteropObjRef("db", "c", "T"));
  message.UpdatedObjects.push_back(InteropObjRef("db", "u", "T"));
  message.DeletedObjects.push_back(InteropObjRef("db", "d", "T"));
  message.PlainObjects.push_back(InteropObjRef("db", "p", "T"));
  message.ChildChangeObjects.push_back(InteropObjRef("db", "k", "T"));
  InteropObjWithProperties data;
  data.ObjRef = InteropObjRef("db", "o", "T");
  data.Properties.push_back(StringArrayProperty("n", {"v"}));
  message.DataObjects.push_back(data);
  return message;
}

TEST(RefreshMsgTest, AnEmptyMessageWritesAllSixListsEmptyAfterTheVersion) {
  RefreshMsg message;
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_EQ(message.ToJsonString(), kEmpty);
}

TEST(RefreshMsgTest, WritesEachListUnderItsKey) { EXPECT_EQ(Filled().ToJsonString(), kFilled); }

TEST(RefreshMsgTest, ReadsEachListFromItsKey) {
  RefreshMsg message;
  ASSERT_TRUE(message.FromJsonString(kFilled));
  EXPECT_EQ(message.CreatedObjects.at(0).ObjId, "c");
  EXPECT_EQ(message.UpdatedObjects.at(0).ObjId, "u");
  EXPECT_EQ(message.DeletedObjects.at(0).ObjId, "d");
  EXPECT_EQ(message.PlainObjects.at(0).ObjId, "p");
  EXPECT_EQ(message.ChildChangeObjects.at(0).ObjId, "k");
  EXPECT_EQ(message.DataObjects.at(0).ObjRef.ObjId, "o");
  EXPECT_EQ(message.ToJsonString(), kFilled);
}

TEST(RefreshMsgTest, AMalformedDeletedObjectIsSkippedAndTheOthersKeepTheirOrder) {
  RefreshMsg message;
  ASSERT_TRUE(
      message.FromJsonString(R"({"DeletedObjects":[{"DBId":"db","ObjId":"1","ObjType":"T"},"bad",)"
                             R"({"DBId":"db","ObjId":"2","ObjType":"T"}],"Version":"_2014_07"})"));
  ASSERT_EQ(message.DeletedObjects.size(), 2u);
  EXPECT_EQ(message.DeletedObjects[0].ObjId, "1");
  EXPECT_EQ(message.DeletedObjects[1].ObjId, "2");
  EXPECT_TRUE(message.CreatedObjects.empty());
}

TEST(RefreshMsgTest, ACopyKeepsTheListsAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<RefreshMsg>(Filled());
  RefreshMsg copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), kFilled);
}

TEST(RefreshMsgTest, ACopyReadsIntoItsOwnLists) {
  RefreshMsg original;
  RefreshMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"PlainObjects": [{"ObjId": "p"}]})"));
  EXPECT_EQ(copy.PlainObjects.size(), 1u);
  EXPECT_EQ(original.ToJsonString(), kEmpty);
}

TEST(RefreshMsgTest, CopyAssignmentReplacesEveryList) {
  RefreshMsg source = Filled();
  RefreshMsg target;
  target.CreatedObjects.push_back(InteropObjRef("x", "x", "x"));
  target.DataObjects.push_back(InteropObjWithProperties());
  target = source;
  EXPECT_EQ(target.ToJsonString(), kFilled);
  target = RefreshMsg();
  EXPECT_EQ(target.ToJsonString(), kEmpty);
}

}  // namespace
