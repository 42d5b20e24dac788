#include "wevlin/webcontrols/internal/CallReader.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::internal::CallReader;

struct Read {
  bool ok = false;
  std::int64_t id = 0;
  std::string function;
  std::vector<std::string> args;
};

Read ReadText(const std::string& text) {
  Read read;
  read.ok = CallReader::Read(text, read.id, read.function, read.args);
  return read;
}

TEST(CallReaderTest, ReadsTheCallThePageLibraryWrites) {
  const Read read = ReadText(R"({"id":12,"fn":"tavoHostMethod","args":["{\"FQN\":\"a\"}","x"]})");
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.id, 12);
  EXPECT_EQ(read.function, "tavoHostMethod");
  EXPECT_EQ(read.args, (std::vector<std::string>{R"({"FQN":"a"})", "x"}));
}

TEST(CallReaderTest, DecodesEveryEscapeOfJson) {
  const Read read = ReadText(
      R"({"id":1,"fn":"f","args":["\" \\ \/ \b \f \n \r \t","\u00e9\u20ac\ud83d\ude00","\u0000"]})");
  ASSERT_TRUE(read.ok);
  ASSERT_EQ(read.args.size(), 3U);
  EXPECT_EQ(read.args[0], "\" \\ / \b \f \n \r \t");
  EXPECT_EQ(read.args[1], "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(read.args[2], std::string(1, '\0'));
}

TEST(CallReaderTest, TurnsLoneSurrogatesIntoReplacementCharacters) {
  const Read read = ReadText(R"({"id":1,"args":["a\ud800b","\udc00","\ud800\u0041"]})");
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.args, (std::vector<std::string>{"a\xEF\xBF\xBD"
                                                 "b",
                                                 "\xEF\xBF\xBD",
                                                 "\xEF\xBF\xBD"
                                                 "A"}));
}

TEST(CallReaderTest, KeepsUtf8TextAsItIs) {
  const Read read = ReadText("{\"id\":1,\"args\":[\"caf\xC3\xA9 \xF0\x9F\x98\x80\"]}");
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.args, (std::vector<std::string>{"caf\xC3\xA9 \xF0\x9F\x98\x80"}));
}

TEST(CallReaderTest, GivesEmptyTextsForWhatIsNotAString) {
  const Read read = ReadText(
      R"( { "id" : 4 , "fn" : 7 , "args" : [ "a" , 5 , null , true , {"b":[1,{}]} , [] , -1.5e3 ] } )");
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.function, "");
  EXPECT_EQ(read.args, (std::vector<std::string>{"a", "", "", "", "", "", ""}));
  const Read notAList = ReadText(R"({"id":4,"fn":"f","args":"a"})");
  ASSERT_TRUE(notAList.ok);
  EXPECT_TRUE(notAList.args.empty());
}

TEST(CallReaderTest, SkipsOtherMembersAndTakesTheLastOfARepeatedOne) {
  const Read read = ReadText(
      R"({"x":{"id":9,"args":["no"]},"id":1,"fn":"a","fn":"b","args":["c"],"args":["d"],"id":2})");
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.id, 2);
  EXPECT_EQ(read.function, "b");
  EXPECT_EQ(read.args, (std::vector<std::string>{"d"}));
  EXPECT_FALSE(ReadText(R"({"id":1,"id":"2"})").ok);
}

TEST(CallReaderTest, TakesOnlyIntegersOfSixtyFourBitsAsIds) {
  EXPECT_EQ(ReadText(R"({"id":9223372036854775807})").id, INT64_MAX);
  EXPECT_EQ(ReadText(R"({"id":-9223372036854775808})").id, INT64_MIN);
  EXPECT_EQ(ReadText(R"({"id":-0})").id, 0);
  for (const char* text :
       {R"({"id":9223372036854775808})", R"({"id":-9223372036854775809})", R"({"id":1.5})",
        R"({"id":1e3})", R"({"id":1.0})", R"({"id":"1"})", R"({"id":null})", R"({"id":[1]})",
        R"({"id":01})", R"({"id":+1})", R"({"id":-})", R"({"fn":"f"})", "{}"}) {
    EXPECT_FALSE(ReadText(text).ok) << text;
  }
}

TEST(CallReaderTest, RefusesTextThatIsNotOneJsonObject) {
  for (const char* text : {"",
                           " ",
                           "not json",
                           "[]",
                           "1",
                           R"("id")",
                           R"({"id":1)",
                           R"({"id":1}})",
                           R"({"id":1} x)",
                           R"({"id":1,})",
                           R"({,"id":1})",
                           R"({"id" 1})",
                           R"({'id':1})",
                           R"({"id":1,"args":[)",
                           R"({"id":1,"args":["a",]})",
                           R"({"id":1,"args":["a" "b"]})",
                           R"({"id":1,"args":["\x"]})",
                           R"({"id":1,"args":["\u12"]})",
                           R"({"id":1,"args":["\u12g4"]})",
                           R"({"id":1,"args":["a)",
                           R"({"id":1,"args":["a\"]})",
                           R"({"id":1,"x":tru})",
                           R"({"id":1,"x":nul})",
                           R"({"id":1,"x":1.})",
                           R"({"id":1,"x":.5})",
                           R"({"id":1,"x":1e})"}) {
    EXPECT_FALSE(ReadText(text).ok) << text;
  }
  EXPECT_FALSE(ReadText("{\"id\":1,\"args\":[\"a\nb\"]}").ok) << "a raw line feed in a string";
  EXPECT_TRUE(ReadText("\t{\"id\":1}\r\n").ok);
}

TEST(CallReaderTest, RefusesNestingDeeperThanItsLimitWithoutRecursingFurther) {
  const std::size_t depth = CallReader::kMaxDepth;
  const std::string within =
      R"({"id":1,"x":)" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
  EXPECT_TRUE(ReadText(within).ok);
  const std::string deep =
      R"({"id":1,"x":)" + std::string(1000000, '[') + std::string(1000000, ']') + "}";
  EXPECT_FALSE(ReadText(deep).ok);
}

TEST(CallReaderTest, ReadsABigArgumentWhole) {
  std::string payload(5 * 1000 * 1000, 'x');
  payload[12345] = '"';
  std::string text = R"({"id":1,"fn":"tavoHostMethod","args":["d",")";
  for (const char c : payload) {
    if (c == '"') text += '\\';
    text += c;
  }
  text += "\"]}";
  const Read read = ReadText(text);
  ASSERT_TRUE(read.ok);
  ASSERT_EQ(read.args.size(), 2U);
  EXPECT_EQ(read.args[1], payload);
}

}  // namespace
