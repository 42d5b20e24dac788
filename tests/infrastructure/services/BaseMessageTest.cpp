#include "wevlin/infrastructure/services/BaseMessage.h"

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseMessage;
using wevlin_test::ThrowsExactly;

// A message with one member of its own, built the way every service message
// is: version first, then its members.
class NoteMsg final : public BaseMessage {
 public:
  NoteMsg() : BaseMessage("_2014_02") { RegisterField("Text", Text); }
  NoteMsg(const NoteMsg& other) : BaseMessage(other), Text(other.Text) {
    RegisterField("Text", Text);
  }
  NoteMsg& operator=(const NoteMsg& other) {
    BaseMessage::operator=(other);
    Text = other.Text;
    return *this;
  }

  std::string Text;
};

TEST(BaseMessageTest, WritesTheVersionAsItsOnlyMember) {
  BaseMessage message("_2014_02");
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2014_02"})");
}

TEST(BaseMessageTest, GetVersionReturnsTheConstructorsVersion) {
  BaseMessage message("_2014_07");
  EXPECT_EQ(message.GetVersion(), "_2014_07");
}

TEST(BaseMessageTest, ParsingAnotherVersionIsAcceptedAndOverwritesIt) {
  BaseMessage message("_2014_07");
  EXPECT_TRUE(message.FromJsonString(R"({"Version": "_2099_12"})"));
  EXPECT_EQ(message.GetVersion(), "_2099_12");
  EXPECT_EQ(message.ToJsonString(), R"({"Version": "_2099_12"})");
}

TEST(BaseMessageTest, ParsingWithoutVersionKeepsTheVersion) {
  BaseMessage message("_2014_02");
  EXPECT_TRUE(message.FromJsonString(R"({"Other": "x"})"));
  EXPECT_EQ(message.GetVersion(), "_2014_02");
  EXPECT_TRUE(message.FromJsonString("{}"));
  EXPECT_EQ(message.GetVersion(), "_2014_02");
}

TEST(BaseMessageTest, GetVersionIsAReferenceToTheStoredVersion) {
  BaseMessage message("_2014_02");
  const std::string& version = message.GetVersion();
  ASSERT_TRUE(message.FromJsonString(R"({"Version": "_2014_03"})"));
  EXPECT_EQ(version, "_2014_03");
}

TEST(BaseMessageTest, AVersionThatIsNoStringIsKeptVerbatim) {
  BaseMessage message("_2014_02");
  EXPECT_TRUE(message.FromJsonString(R"({"Version": 5})"));
  EXPECT_EQ(message.GetVersion(), "5");
}

TEST(BaseMessageTest, TextThatIsNotAnObjectThrowsAndKeepsTheVersion) {
  BaseMessage message("_2014_02");
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { message.FromJsonString("[1]"); },
                                                "JSON data is not an object"));
  EXPECT_EQ(message.GetVersion(), "_2014_02");
}

TEST(BaseMessageTest, TheVersionIsRegisteredBeforeTheDerivedMembers) {
  NoteMsg note;
  note.Text = "hi";
  EXPECT_EQ(note.ToJsonString(), R"({"Version": "_2014_02", "Text": "hi"})");
}

TEST(BaseMessageTest, ACopyKeepsTheValuesAndSerialisesLikeTheOriginal) {
  NoteMsg original;
  ASSERT_TRUE(original.FromJsonString(R"({"Version": "_2015_10", "Text": "a"})"));
  NoteMsg copy(original);
  EXPECT_EQ(copy.GetVersion(), "_2015_10");
  EXPECT_EQ(copy.Text, "a");
  EXPECT_EQ(copy.ToJsonString(), R"({"Version": "_2015_10", "Text": "a"})");
  EXPECT_EQ(copy.ToJsonString(), original.ToJsonString());

  BaseMessage plain("_2014_03");
  BaseMessage plainCopy(plain);
  EXPECT_EQ(plainCopy.ToJsonString(), R"({"Version": "_2014_03"})");
}

TEST(BaseMessageTest, ACopyReadsIntoItsOwnMembers) {
  NoteMsg original;
  original.Text = "a";
  NoteMsg copy(original);
  ASSERT_TRUE(copy.FromJsonString(R"({"Version": "_2014_03", "Text": "b"})"));
  EXPECT_EQ(copy.GetVersion(), "_2014_03");
  EXPECT_EQ(copy.Text, "b");
  EXPECT_EQ(original.GetVersion(), "_2014_02");
  EXPECT_EQ(original.Text, "a");
}

TEST(BaseMessageTest, CopyAssignmentCopiesTheVersionAndKeepsTheTargetsFields) {
  NoteMsg source;
  ASSERT_TRUE(source.FromJsonString(R"({"Version": "_2014_07", "Text": "s"})"));
  NoteMsg target;
  target = source;
  EXPECT_EQ(target.GetVersion(), "_2014_07");
  EXPECT_EQ(target.ToJsonString(), R"({"Version": "_2014_07", "Text": "s"})");

  ASSERT_TRUE(target.FromJsonString(R"({"Version": "_2014_02"})"));
  EXPECT_EQ(target.GetVersion(), "_2014_02");
  EXPECT_EQ(source.GetVersion(), "_2014_07");

  BaseMessage plain("_2014_02");
  plain = BaseMessage("_2014_07");
  EXPECT_EQ(plain.ToJsonString(), R"({"Version": "_2014_07"})");
}

TEST(BaseMessageTest, SelfAssignmentKeepsTheValues) {
  NoteMsg note;
  note.Text = "t";
  NoteMsg& alias = note;
  note = alias;
  EXPECT_EQ(note.ToJsonString(), R"({"Version": "_2014_02", "Text": "t"})");
}

TEST(BaseMessageTest, OriginalAndCopyMayBeDestroyedInEitherOrder) {
  auto original = std::make_unique<NoteMsg>();
  original->Text = "x";
  auto copy = std::make_unique<NoteMsg>(*original);
  original.reset();
  EXPECT_EQ(copy->ToJsonString(), R"({"Version": "_2014_02", "Text": "x"})");

  auto second = std::make_unique<NoteMsg>(*copy);
  second.reset();
  EXPECT_EQ(copy->ToJsonString(), R"({"Version": "_2014_02", "Text": "x"})");
}

}  // namespace
