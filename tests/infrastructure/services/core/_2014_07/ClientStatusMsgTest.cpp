#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusMsg.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::ClientStatusMsg;

TEST(ClientStatusMsgTest, ADefaultMessageIsIdle) {
  ClientStatusMsg message;
  EXPECT_EQ(message.State, "idle");
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2014_07", "State": "idle"})");
}

TEST(ClientStatusMsgTest, ReadsTheState) {
  ClientStatusMsg message;
  ASSERT_TRUE(message.FromJsonString(R"({"State":"busy","Version":"_2014_07"})"));
  EXPECT_EQ(message.State, "busy");
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2014_07", "State": "busy"})");
}

TEST(ClientStatusMsgTest, WithoutStateTheMessageStaysIdle) {
  ClientStatusMsg message;
  ASSERT_TRUE(message.FromJsonString(R"({"Version":"_2014_07"})"));
  EXPECT_EQ(message.State, "idle");
}

TEST(ClientStatusMsgTest, ACopyKeepsTheStateAndSerialisesLikeTheOriginal) {
  auto original = std::make_unique<ClientStatusMsg>();
  original->State = "busy";
  ClientStatusMsg copy(*original);
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  original.reset();
  EXPECT_EQ(copy.ToJsonString(), R"({"Version": "_2014_07", "State": "busy"})");
}

TEST(ClientStatusMsgTest, ACopyReadsIntoItsOwnMembers) {
  ClientStatusMsg original;
  ClientStatusMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"State": "busy"})"));
  EXPECT_EQ(copy.State, "busy");
  EXPECT_EQ(original.State, "idle");
}

TEST(ClientStatusMsgTest, CopyAssignmentCopiesTheStateAndVersion) {
  ClientStatusMsg source;
  ASSERT_TRUE(source.FromJsonString(R"({"State": "busy", "Version": "_2014_02"})"));
  ClientStatusMsg target;
  target = source;
  EXPECT_EQ(target.ToJsonString(), R"({"Version": "_2014_02", "State": "busy"})");
}

}  // namespace
