#include "wevlin/webcontrols/internal/Utf8Text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::internal::IsValidUtf8;
using Com::Velmora::TAVO::Wevlin::WebControls::internal::RepairSurrogateEscapes;
using Com::Velmora::TAVO::Wevlin::WebControls::internal::ToValidUtf8;

const std::string kFffd = "\xEF\xBF\xBD";

TEST(Utf8TextTest, ValidTextIsKeptAsItIs) {
  for (const std::string& text :
       {std::string(), std::string("plain ASCII"),
        std::string("Gr\xC3\xBC\xC3\x9F"
                    "e"),
        std::string("\xE6\x97\xA5\xE6\x9C\xAC"), std::string("\xF0\x9F\x98\x80"),
        std::string("\xEF\xBF\xBF"), std::string("\xF4\x8F\xBF\xBF"), std::string("\xED\x9F\xBF"),
        std::string("nul \0 inside", 12)}) {
    EXPECT_EQ(ToValidUtf8(text), text);
    EXPECT_TRUE(IsValidUtf8(text));
  }
}

TEST(Utf8TextTest, EachMaximalIllFormedSequenceBecomesOneReplacement) {
  struct Case {
    std::string in;
    std::string out;
  };
  const Case cases[] = {
      {"\xFF", kFffd},
      {"a\xFF"
       "b",
       "a" + kFffd + "b"},
      {"\x80\x80", kFffd + kFffd},
      // A truncated sequence is one subpart, at the end or before other text.
      {"a\xE6\x97", "a" + kFffd},
      {"\xE6\x97"
       "a",
       kFffd + "a"},
      {"\xF0\x9F\x98", kFffd},
      // Overlong forms, surrogates and values past U+10FFFF: the lead byte
      // fails at once, then each continuation byte stands alone.
      {"\xC0\xAF", kFffd + kFffd},
      {"\xE0\x80\xAF", kFffd + kFffd + kFffd},
      {"\xED\xA0\x80", kFffd + kFffd + kFffd},
      {"\xF4\x90\x80\x80", kFffd + kFffd + kFffd + kFffd},
      {"\xF5\x80", kFffd + kFffd},
      // A good lead byte followed by a new lead byte.
      {"\xE6\xE6\x97\xA5", kFffd + "\xE6\x97\xA5"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ToValidUtf8(c.in), c.out) << testing::PrintToString(c.in);
    EXPECT_FALSE(IsValidUtf8(c.in)) << testing::PrintToString(c.in);
  }
}

TEST(Utf8TextTest, LoneSurrogateEscapesAreReplaced) {
  EXPECT_EQ(RepairSurrogateEscapes(R"({"v":"a\ud800b"})"), R"({"v":"a\ufffdb"})");
  EXPECT_EQ(RepairSurrogateEscapes(R"("\uDC00")"), R"("\ufffd")");
  EXPECT_EQ(RepairSurrogateEscapes(R"("\ud800\u0041")"), R"("\ufffd\u0041")");
  EXPECT_EQ(RepairSurrogateEscapes(R"("\ud800\ud800\udc00")"), R"("\ufffd\ud800\udc00")");
  EXPECT_EQ(RepairSurrogateEscapes(R"("\udc00\ud800")"), R"("\ufffd\ufffd")");
}

TEST(Utf8TextTest, OtherEscapesAndPairsAreKept) {
  for (const std::string& json :
       {std::string(R"({"v":"\ud83d\ude00"})"), std::string(R"("\\ud800")"),
        std::string(R"("\"\\\/\n\u0041\u00e9")"), std::string(R"("\ud8")"),
        std::string("no escapes at all"), std::string(R"("ends with a backslash\)")}) {
    EXPECT_EQ(RepairSurrogateEscapes(json), json);
  }
}

}  // namespace
