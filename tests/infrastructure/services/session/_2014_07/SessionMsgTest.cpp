#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::InteropObjRef;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::StringArrayProperty;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionMsg;

constexpr char kFilled[] =
    R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", "ObjId": "1", )"
    R"("ObjType": "User"}], "Preferences": [{"Name": "lang", "Values": ["en", "de"]}]})";

SessionMsg Filled() {
  SessionMsg message;
  message.SessionObjects.push_back(InteropObjRef("db", "1", "User"));
  message.Preferences.push_back(StringArrayProperty("lang", {"en", "de"}));
  return message;
}

TEST(SessionMsgTest, ADefaultMessageWritesBothListsEmpty) {
  SessionMsg message;
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_07", "SessionObjects": [], "Preferences": []})");
}

TEST(SessionMsgTest, WritesBothListsInOrder) { EXPECT_EQ(Filled().ToJsonString(), kFilled); }

TEST(SessionMsgTest, ReadsBothListsAndSkipsBadElements) {
  SessionMsg message;
  ASSERT_TRUE(message.FromJsonString(
      R"({"Preferences":[{"Name":"lang","Values":["en","de"]},"x"],)"
      R"("SessionObjects":[1,{"DBId":"db","ObjId":"1","ObjType":"User"}],"Version":"_2014_07"})"));
  EXPECT_EQ(message.ToJsonString(), kFilled);
}

TEST(SessionMsgTest, ACopyKeepsTheListsAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<SessionMsg>(Filled());
  SessionMsg copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), kFilled);
}

TEST(SessionMsgTest, ACopyReadsIntoItsOwnLists) {
  SessionMsg original = Filled();
  SessionMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"SessionObjects": [{"ObjId": "2"}]})"));
  EXPECT_EQ(copy.SessionObjects.size(), 2u);
  EXPECT_EQ(original.ToJsonString(), kFilled);
}

TEST(SessionMsgTest, CopyAssignmentReplacesBothLists) {
  SessionMsg source = Filled();
  SessionMsg target;
  target.SessionObjects.push_back(InteropObjRef("x", "y", "z"));
  target = source;
  EXPECT_EQ(target.ToJsonString(), kFilled);
}

}  // namespace
