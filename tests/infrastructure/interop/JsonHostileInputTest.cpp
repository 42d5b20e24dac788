// Texts a hostile or broken page might send: deep and unbalanced nesting,
// huge inputs and random bytes. None may crash the process; every result is
// still exact.

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::DataContract;
using interop::JsonObject;
using interop::JsonValue;
using wevlin_test::StdoutCapture;
using wevlin_test::Thrown;

constexpr std::size_t kMillion = 1000000;

std::string Repeat(const std::string& part, std::size_t times) {
  std::string text;
  text.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += part;
  return text;
}

// `levels` arrays nested in each other: [[[...]]].
std::string NestedArrays(std::size_t levels) {
  return std::string(levels, '[') + std::string(levels, ']');
}

// `levels` objects nested in each other: {"a": {"a": {}}}.
std::string NestedObjects(std::size_t levels) {
  return Repeat("{\"a\": ", levels - 1) + "{}" + std::string(levels - 1, '}');
}

class Holder : public DataContract {
 public:
  Holder() {
    RegisterField("n", n);
    RegisterField("v", value);
    RegisterField("list", list);
    RegisterField("names", names);
  }
  int n = 7;
  JsonValue value;
  std::vector<int> list;
  std::vector<std::string> names;
};

// ---------------------------------------------------------------------------
// A million opening brackets

TEST(JsonHostileInputTest, AMillionOpeningBracketsThroughJsonValue) {
  JsonValue value(1);
  StdoutCapture capture;
  EXPECT_FALSE(value.FromJsonString(std::string(kMillion, '[')));
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
  EXPECT_EQ(value.GetType(), JsonValue::Null);
}

TEST(JsonHostileInputTest, AMillionOpeningBracesThroughJsonValue) {
  JsonValue value(1);
  StdoutCapture capture;
  // The second brace stands where a property name belongs.
  EXPECT_FALSE(value.FromJsonString(std::string(kMillion, '{')));
  EXPECT_EQ(capture.Text(), "");
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_FALSE(value.FromJsonString(Repeat("{\"a\":", kMillion)));
  EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
}

TEST(JsonHostileInputTest, AMillionOpeningBracketsThroughJsonObject) {
  JsonObject object;
  object.SetProperty("kept", JsonValue(true));
  StdoutCapture capture;
  EXPECT_EQ(Thrown([&] { object.FromJsonString(std::string(kMillion, '[')); }),
            "runtime_error: JSON data is not an object");
  EXPECT_FALSE(object.FromJsonString(std::string(kMillion, '{')));
  EXPECT_FALSE(object.FromJsonString("{\"a\": " + std::string(kMillion, '[')));
  EXPECT_FALSE(object.FromJsonString(Repeat("{\"a\": ", kMillion)));
  EXPECT_EQ(capture.Text(),
            "EndOfArray: final character incorrect\n"
            "EndOfObject: final character incorrect\n");
  EXPECT_EQ(object.ToJsonString(), "{\"kept\": true}");
}

TEST(JsonHostileInputTest, AMillionOpeningBracketsThroughADataContract) {
  Holder holder;
  StdoutCapture capture;
  // The object is malformed, which a contract reads as true without change.
  EXPECT_TRUE(holder.FromJsonString("{\"n\": 1, \"v\": " + std::string(kMillion, '[')));
  EXPECT_TRUE(holder.FromJsonString("{\"n\": 1, \"list\": " + std::string(kMillion, '[')));
  EXPECT_TRUE(holder.FromJsonString("{\"n\": 1, \"v\": " + std::string(kMillion, '{')));
  EXPECT_EQ(Thrown([&] { holder.FromJsonString(std::string(kMillion, '[')); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(capture.Text(),
            "EndOfArray: final character incorrect\n"
            "EndOfArray: final character incorrect\n"
            "EndOfObject: final character incorrect\n");
  EXPECT_EQ(holder.n, 7);
  EXPECT_EQ(holder.value.GetType(), JsonValue::Null);
}

TEST(JsonHostileInputTest, AMillionOpeningBracketsThroughTheCuttingRoutines) {
  const std::string open(kMillion, '[');
  std::vector<std::string> elements;
  std::map<std::string, std::string> properties;
  StdoutCapture capture;
  EXPECT_FALSE(interop::internal::ParseArray(open, elements));
  EXPECT_FALSE(interop::internal::ParseObject("{\"a\": " + open, properties));
  EXPECT_EQ(capture.Text(),
            "EndOfArray: final character incorrect\n"
            "EndOfArray: final character incorrect\n");
}

// ---------------------------------------------------------------------------
// A million balanced brackets

TEST(JsonHostileInputTest, AMillionBalancedBracketsReadFalseWithoutALine) {
  const std::string text = NestedArrays(kMillion);
  JsonValue value(1);
  StdoutCapture capture;
  EXPECT_FALSE(value.FromJsonString(text));
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  JsonObject object;
  EXPECT_FALSE(object.FromJsonString("{\"a\": " + text + "}"));
  EXPECT_TRUE(object.GetAllProperties().empty());
  EXPECT_FALSE(value.FromJsonString(NestedObjects(kMillion)));
  EXPECT_EQ(capture.Text(), "");
}

TEST(JsonHostileInputTest, AMillionBalancedBracketsThroughADataContract) {
  const std::string text = NestedArrays(kMillion);
  Holder holder;
  {
    StdoutCapture capture;
    EXPECT_FALSE(holder.FromJsonString("{\"n\": 1, \"v\": " + text + "}"));
    EXPECT_EQ(capture.Text(),
              "DataContract::FromJsonString: failed to read v from JSON data " + text + "\n");
  }
  EXPECT_EQ(holder.n, 1);
  EXPECT_EQ(holder.value.GetType(), JsonValue::Null);
  // The one element of the list is the array nested inside, not an integer.
  EXPECT_EQ(Thrown([&] { holder.FromJsonString("{\"list\": " + text + "}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_TRUE(holder.list.empty());
  // A string list keeps that element verbatim.
  EXPECT_TRUE(holder.FromJsonString("{\"names\": " + text + "}"));
  ASSERT_EQ(holder.names.size(), 1u);
  EXPECT_EQ(holder.names[0], NestedArrays(kMillion - 1));
}

TEST(JsonHostileInputTest, AMillionBalancedBracketsThroughTheCuttingRoutines) {
  const std::string text = NestedArrays(kMillion);
  std::vector<std::string> elements;
  ASSERT_TRUE(interop::internal::ParseArray(text, elements));
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].size(), text.size() - 2);
  std::map<std::string, std::string> properties;
  ASSERT_TRUE(interop::internal::ParseObject("{\"a\": " + text + "}", properties));
  EXPECT_EQ(properties.at("a").size(), text.size());
}

// ---------------------------------------------------------------------------
// The depth bound: the outermost array or object is at depth 1.

TEST(JsonHostileInputTest, AThousandNestedArraysRead) {
  const std::string text = NestedArrays(interop::internal::kMaxJsonDepth);
  JsonValue value;
  ASSERT_TRUE(value.FromJsonString(text));
  EXPECT_EQ(value.ToJsonString(), text);
  const JsonValue* level = &value;
  std::size_t depth = 1;
  while (!level->GetAsArray().empty()) {
    level = &level->GetAsArray()[0];
    ++depth;
  }
  EXPECT_EQ(depth, 1000u);
}

TEST(JsonHostileInputTest, AThousandAndOneNestedArraysReadFalse) {
  JsonValue value(1);
  StdoutCapture capture;
  EXPECT_FALSE(value.FromJsonString(NestedArrays(1001)));
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_EQ(capture.Text(), "");
}

TEST(JsonHostileInputTest, TheBoundHoldsForObjectsAndMixedNesting) {
  JsonObject object;
  ASSERT_TRUE(object.FromJsonString(NestedObjects(1000)));
  EXPECT_EQ(object.ToJsonString(), NestedObjects(1000));
  EXPECT_FALSE(object.FromJsonString(NestedObjects(1001)));
  EXPECT_EQ(object.ToJsonString(), NestedObjects(1000));

  const std::string mixed1000 = Repeat("[{\"k\": ", 500) + "0" + Repeat("}]", 500);
  JsonValue value;
  ASSERT_TRUE(value.FromJsonString(mixed1000));
  EXPECT_EQ(value.ToJsonString(), mixed1000);
  EXPECT_FALSE(value.FromJsonString("[" + mixed1000 + "]"));
  EXPECT_FALSE(value.FromJsonString("{\"x\": " + mixed1000 + "}"));
  ASSERT_TRUE(value.FromJsonString("[1, " + NestedArrays(999) + ", \"end\"]"));
  EXPECT_FALSE(value.FromJsonString("[1, " + NestedArrays(1000) + ", \"end\"]"));
}

TEST(JsonHostileInputTest, TheBoundAppliesPerReading) {
  // A contract's value field is a reading of its own: its text may again nest
  // a thousand levels.
  Holder holder;
  ASSERT_TRUE(holder.FromJsonString("{\"v\": " + NestedArrays(1000) + "}"));
  EXPECT_EQ(holder.value.ToJsonString(), NestedArrays(1000));
  StdoutCapture capture;
  EXPECT_FALSE(holder.FromJsonString("{\"v\": " + NestedArrays(1001) + "}"));
  EXPECT_EQ(capture.Text(), "DataContract::FromJsonString: failed to read v from JSON data " +
                                NestedArrays(1001) + "\n");
}

TEST(JsonHostileInputTest, TooDeepNestingDecidesWhenTheReadingGetsThere) {
  JsonValue value;
  // Elements are read in order: the bad number comes first.
  EXPECT_EQ(Thrown([&] { value.FromJsonString("[1x, " + NestedArrays(1001) + "]"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_FALSE(value.FromJsonString("[" + NestedArrays(1001) + ", 1x]"));
  // A structural failure of an outer level comes before any element is read.
  StdoutCapture capture;
  EXPECT_FALSE(value.FromJsonString("[" + NestedArrays(1001) + ", [1"));
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
}

TEST(JsonHostileInputTest, DeepNestingAroundALargePayload) {
  std::string payload;
  for (int i = 0; i < 100000; ++i) payload += (i == 0 ? "" : ", ") + std::to_string(i);
  const std::string text = std::string(999, '[') + "[" + payload + "]" + std::string(999, ']');
  JsonValue value;
  ASSERT_TRUE(value.FromJsonString(text));
  const JsonValue* level = &value;
  for (int i = 0; i < 999; ++i) level = &level->GetAsArray()[0];
  ASSERT_EQ(level->GetAsArray().size(), 100000u);
  EXPECT_EQ(level->GetAsArray()[99999].GetAsInt(), 99999);
}

TEST(JsonHostileInputTest, ManyWideLevels) {
  // Every level holds strings with brackets in them and several siblings.
  std::string text = "0";
  for (int i = 0; i < 900; ++i) {
    text = "[\"]\", {\"k\": \"[{\"}, " + text + ", [\"}\"]]";
  }
  JsonValue value;
  ASSERT_TRUE(value.FromJsonString(text));
  EXPECT_EQ(JsonValue(value).ToJsonString(), value.ToJsonString());
  JsonValue again;
  ASSERT_TRUE(again.FromJsonString(value.ToJsonString()));
  EXPECT_EQ(again.ToJsonString(), value.ToJsonString());
}

// ---------------------------------------------------------------------------
// Long strings and escapes

TEST(JsonHostileInputTest, LongStringsAndBackslashRuns) {
  const std::string backslashes(kMillion, '\\');
  JsonValue value;
  ASSERT_TRUE(value.FromJsonString("\"" + backslashes + "\""));
  EXPECT_EQ(value.GetAsString().size(), kMillion / 2);
  EXPECT_EQ(Thrown([&] { value.FromJsonString("\"" + backslashes + "\\\""); }),
            "runtime_error: JSON data is not a string");
  std::vector<std::string> elements;
  EXPECT_FALSE(interop::internal::ParseArray("[\"" + backslashes + "\\\"]", elements));
  ASSERT_TRUE(interop::internal::ParseArray("[\"" + backslashes + "\", 1]", elements));
  EXPECT_EQ(elements.size(), 2u);
  const std::string quotes = "[" + Repeat("\"\\\"\", ", 100000) + "1]";
  ASSERT_TRUE(value.FromJsonString(quotes));
  EXPECT_EQ(value.GetAsArray().size(), 100001u);
  EXPECT_EQ(value.GetAsArray()[0].GetAsString(), "\"");
}

// ---------------------------------------------------------------------------
// Random bytes

TEST(JsonHostileInputTest, RandomBytesNeverCrash) {
  std::mt19937 random(99);
  std::uniform_int_distribution<int> byte(0, 255);
  std::uniform_int_distribution<int> length(0, 200);
  const std::string structural = "[]{}\",:\\ ";
  StdoutCapture capture;
  for (int i = 0; i < 5000; ++i) {
    std::string text;
    for (int n = length(random); n > 0; --n) {
      const int b = byte(random);
      text += b < 128 ? structural[static_cast<std::size_t>(b) % structural.size()]
                      : static_cast<char>(b);
    }
    JsonValue value;
    try {
      if (!value.FromJsonString(text)) {
        EXPECT_EQ(value.GetType(), JsonValue::Null);
      }
    } catch (const std::runtime_error&) {
      EXPECT_EQ(value.GetType(), JsonValue::Null);
    }
    JsonObject object;
    try {
      object.FromJsonString(text);
    } catch (const std::runtime_error&) {
      EXPECT_TRUE(object.GetAllProperties().empty());
    }
    Holder holder;
    try {
      holder.FromJsonString(text);
    } catch (const std::runtime_error&) {
    }
  }
}

}  // namespace
