#include "wevlin/infrastructure/interop/JsonValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/JsonObject.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonObject;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;
using wevlin_test::StdoutCapture;
using wevlin_test::Thrown;

constexpr char kWrongType[] = "logic_error: JsonValue invalid type requested";

// Returns which accessors succeed on `value`, e.g. "int" for an Integer.
std::string WorkingAccessors(const JsonValue& value) {
  std::string working;
  auto probe = [&](const char* name, auto&& call) {
    const std::string thrown = Thrown(call);
    if (thrown == "none") {
      working += working.empty() ? name : std::string(",") + name;
    } else {
      EXPECT_EQ(thrown, kWrongType) << name;
    }
  };
  probe("int", [&] { value.GetAsInt(); });
  probe("double", [&] { value.GetAsDouble(); });
  probe("bool", [&] { value.GetAsBool(); });
  probe("string", [&] { value.GetAsString(); });
  probe("object", [&] { value.GetAsObject(); });
  probe("array", [&] { value.GetAsArray(); });
  return working;
}

JsonValue Read(const std::string& text) {
  JsonValue value;
  EXPECT_TRUE(value.FromJsonString(text)) << text;
  return value;
}

// ---------------------------------------------------------------------------
// The value model

TEST(JsonValueTest, TypeNumbersAreFixed) {
  EXPECT_EQ(JsonValue::Null, 0);
  EXPECT_EQ(JsonValue::Integer, 1);
  EXPECT_EQ(JsonValue::String, 2);
  EXPECT_EQ(JsonValue::Double, 3);
  EXPECT_EQ(JsonValue::Boolean, 4);
  EXPECT_EQ(JsonValue::Object, 5);
  EXPECT_EQ(JsonValue::Array, 6);
}

TEST(JsonValueTest, DefaultIsNullAndEveryAccessorThrows) {
  const JsonValue value;
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_EQ(Thrown([&] { value.GetAsInt(); }), kWrongType);
  EXPECT_EQ(WorkingAccessors(value), "");
  EXPECT_EQ(value.ToJsonString(), "null");
}

TEST(JsonValueTest, ConstructorsSetTheMatchingType) {
  EXPECT_EQ(JsonValue(7).GetType(), JsonValue::Integer);
  EXPECT_EQ(JsonValue(7).GetAsInt(), 7);
  EXPECT_EQ(JsonValue(2.5).GetType(), JsonValue::Double);
  EXPECT_EQ(JsonValue(2.5).GetAsDouble(), 2.5);
  EXPECT_EQ(JsonValue(true).GetType(), JsonValue::Boolean);
  EXPECT_TRUE(JsonValue(true).GetAsBool());
  EXPECT_EQ(JsonValue(std::string("s")).GetType(), JsonValue::String);
  EXPECT_EQ(JsonValue(std::string("s")).GetAsString(), "s");
  EXPECT_EQ(JsonValue("literal").GetType(), JsonValue::String);
  EXPECT_EQ(JsonValue("literal").GetAsString(), "literal");
  EXPECT_EQ(JsonValue(static_cast<const char*>(nullptr)).GetAsString(), "");
  JsonObject object;
  object.SetProperty("k", JsonValue(1));
  EXPECT_EQ(JsonValue(object).GetType(), JsonValue::Object);
  EXPECT_EQ(JsonValue(object).GetAsObject().GetProperty("k").GetAsInt(), 1);
  const std::vector<JsonValue> elements = {JsonValue(1), JsonValue("a")};
  EXPECT_EQ(JsonValue(elements).GetType(), JsonValue::Array);
  EXPECT_EQ(JsonValue(elements).GetAsArray().size(), 2u);
  EXPECT_EQ(JsonValue(std::vector<JsonValue>()).GetType(), JsonValue::Array);
}

TEST(JsonValueTest, AccessorsRequireTheExactType) {
  EXPECT_EQ(WorkingAccessors(JsonValue(3)), "int");
  EXPECT_EQ(WorkingAccessors(JsonValue(3.0)), "double");
  EXPECT_EQ(WorkingAccessors(JsonValue(false)), "bool");
  EXPECT_EQ(WorkingAccessors(JsonValue("x")), "string");
  EXPECT_EQ(WorkingAccessors(JsonValue(JsonObject())), "object");
  EXPECT_EQ(WorkingAccessors(JsonValue(std::vector<JsonValue>())), "array");
}

TEST(JsonValueTest, SetIntThenGetDoubleThrowsAndTheOtherWayRound) {
  JsonValue value;
  value.SetValue(3);
  EXPECT_EQ(Thrown([&] { value.GetAsDouble(); }), kWrongType);
  value.SetValue(3.0);
  EXPECT_EQ(Thrown([&] { value.GetAsInt(); }), kWrongType);
  EXPECT_EQ(value.GetAsDouble(), 3.0);
}

TEST(JsonValueTest, EverySetterReplacesAnyKind) {
  JsonValue value(std::vector<JsonValue>{JsonValue(1), JsonValue(2)});
  value.SetValue(true);
  EXPECT_EQ(value.GetType(), JsonValue::Boolean);
  EXPECT_EQ(value.ToJsonString(), "true");
  value.SetValue(std::string("text"));
  EXPECT_EQ(value.ToJsonString(), "\"text\"");
  value.SetValue("literal");
  EXPECT_EQ(value.GetAsString(), "literal");
  value.SetValue(-4);
  EXPECT_EQ(value.ToJsonString(), "-4");
  value.SetValue(0.5);
  EXPECT_EQ(value.ToJsonString(), "0.5");
  JsonObject object;
  object.SetProperty("a", JsonValue(1));
  value.SetValue(object);
  EXPECT_EQ(value.ToJsonString(), "{\"a\": 1}");
  value.SetValue(std::vector<JsonValue>{JsonValue("x")});
  EXPECT_EQ(value.ToJsonString(), "[\"x\"]");
  value.SetValue(JsonObject());
  EXPECT_EQ(value.ToJsonString(), "{}");
  // The array written after the object holds only its own element.
  value.PushBack(JsonValue(9));
  EXPECT_EQ(value.ToJsonString(), "[9]");
}

// One value of each kind, with the text it writes and the accessor that
// reads it; each sets the value through the matching setter.
struct Kind {
  const char* accessor;
  std::string text;
  void (*set)(JsonValue& value);
};

std::vector<Kind> EveryKind() {
  return {
      {"", "null", [](JsonValue& value) { value.Clear(); }},
      {"int", "-7", [](JsonValue& value) { value.SetValue(-7); }},
      {"string", "\"a long string that does not fit in a short buffer\"",
       [](JsonValue& value) {
         value.SetValue(std::string("a long string that does not fit in a short buffer"));
       }},
      {"double", "0.25", [](JsonValue& value) { value.SetValue(0.25); }},
      {"bool", "true", [](JsonValue& value) { value.SetValue(true); }},
      {"object", "{\"k\": [1, \"v\"]}",
       [](JsonValue& value) {
         JsonObject object;
         object.SetProperty("k", JsonValue(std::vector<JsonValue>{JsonValue(1), JsonValue("v")}));
         value.SetValue(std::move(object));
       }},
      {"array", "[{\"x\": null}, \"y\"]",
       [](JsonValue& value) {
         JsonObject object;
         object.SetProperty("x", JsonValue());
         value.SetValue(std::vector<JsonValue>{JsonValue(object), JsonValue("y")});
       }},
  };
}

TEST(JsonValueTest, EveryKindChangesIntoEveryOtherAndCopiesKeepTheirOwn) {
  const std::vector<Kind> kinds = EveryKind();
  for (const Kind& from : kinds) {
    for (const Kind& to : kinds) {
      SCOPED_TRACE(from.text + " -> " + to.text);
      JsonValue value;
      from.set(value);
      const JsonValue copy(value);
      JsonValue assigned(3.5);
      assigned = value;
      to.set(value);
      EXPECT_EQ(value.ToJsonString(), to.text);
      EXPECT_EQ(WorkingAccessors(value), to.accessor);
      EXPECT_EQ(copy.ToJsonString(), from.text);
      EXPECT_EQ(WorkingAccessors(copy), from.accessor);
      EXPECT_EQ(assigned.ToJsonString(), from.text);
      EXPECT_EQ(WorkingAccessors(assigned), from.accessor);
      // Moving hands the content over and leaves a Null that takes any kind.
      JsonValue moved(std::move(assigned));
      EXPECT_EQ(moved.ToJsonString(), from.text);
      EXPECT_EQ(assigned.GetType(), JsonValue::Null);  // NOLINT(bugprone-use-after-move)
      to.set(assigned);
      EXPECT_EQ(assigned.ToJsonString(), to.text);
      EXPECT_EQ(WorkingAccessors(assigned), to.accessor);
    }
  }
}

TEST(JsonValueTest, AScalarReadsItsOwnValueAfterAnotherKind) {
  JsonValue value(-1.0);
  value.SetValue(0);
  EXPECT_EQ(value.GetAsInt(), 0);
  value.SetValue(std::string("x"));
  value.SetValue(false);
  EXPECT_FALSE(value.GetAsBool());
  value.SetValue(true);
  value.SetValue(0.0);
  EXPECT_EQ(value.GetAsDouble(), 0.0);
  EXPECT_FALSE(std::signbit(value.GetAsDouble()));
  value.SetValue(std::numeric_limits<int>::min());
  value.SetValue(std::vector<JsonValue>());
  value.Clear();
  value.SetValue(1);
  EXPECT_EQ(value.GetAsInt(), 1);
}

TEST(JsonValueTest, PushBackOnAStringMakesAOneElementArray) {
  JsonValue value("x");
  value.PushBack(JsonValue(5));
  EXPECT_EQ(value.GetType(), JsonValue::Array);
  ASSERT_EQ(value.GetAsArray().size(), 1u);
  EXPECT_EQ(value.GetAsArray()[0].GetAsInt(), 5);
  EXPECT_EQ(Thrown([&] { value.GetAsString(); }), kWrongType);
  EXPECT_EQ(value.ToJsonString(), "[5]");
}

TEST(JsonValueTest, PushBackOnNullMakesAOneElementArrayAndThenAppends) {
  JsonValue value;
  value.PushBack(JsonValue("a"));
  EXPECT_EQ(value.ToJsonString(), "[\"a\"]");
  value.PushBack(JsonValue());
  value.PushBack(JsonValue(1.5));
  EXPECT_EQ(value.ToJsonString(), "[\"a\", null, 1.5]");
  JsonValue number(3);
  number.PushBack(JsonValue(true));
  EXPECT_EQ(number.ToJsonString(), "[true]");
}

TEST(JsonValueTest, PushBackCopiesTheArgument) {
  JsonValue element("a");
  JsonValue array;
  array.PushBack(element);
  element.SetValue("changed");
  EXPECT_EQ(array.ToJsonString(), "[\"a\"]");
}

TEST(JsonValueTest, ClearResetsToNull) {
  JsonValue value(std::vector<JsonValue>{JsonValue(1)});
  value.Clear();
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_EQ(value.ToJsonString(), "null");
  value.SetValue(std::string("s"));
  value.Clear();
  EXPECT_EQ(WorkingAccessors(value), "");
}

TEST(JsonValueTest, ASetterTakesPartsOfTheValueItself) {
  JsonValue text(std::string("a string longer than a short buffer holds"));
  text.SetValue(text.GetAsString());
  EXPECT_EQ(text.GetAsString(), "a string longer than a short buffer holds");

  JsonValue object;
  object.SetValue(JsonObject());
  JsonObject inner;
  inner.SetProperty("k", JsonValue("v"));
  object.SetValue(inner);
  object.SetValue(object.GetAsObject());
  EXPECT_EQ(object.ToJsonString(), "{\"k\": \"v\"}");

  JsonValue array(std::vector<JsonValue>{JsonValue("first element, long enough"), JsonValue(2)});
  array = array.GetAsArray()[0];
  EXPECT_EQ(array.ToJsonString(), "\"first element, long enough\"");
  array.SetValue(std::vector<JsonValue>{JsonValue(1)});
  array.PushBack(array);
  EXPECT_EQ(array.ToJsonString(), "[1, [1]]");
  array.SetValue(array.GetAsArray());
  EXPECT_EQ(array.ToJsonString(), "[1, [1]]");
}

TEST(JsonValueTest, AClearedValueCopiesMovesAndTakesAnyKind) {
  for (const Kind& kind : EveryKind()) {
    SCOPED_TRACE(kind.text);
    JsonValue value;
    kind.set(value);
    value.Clear();
    JsonValue copy(value);
    JsonValue assigned("x");
    assigned = value;
    JsonValue moved(std::move(value));
    for (JsonValue* cleared : {&copy, &assigned, &moved, &value}) {
      EXPECT_EQ(cleared->GetType(), JsonValue::Null);
      EXPECT_EQ(cleared->ToJsonString(), "null");
      EXPECT_EQ(WorkingAccessors(*cleared), "");
    }
    for (const Kind& next : EveryKind()) {
      JsonValue again(copy);
      next.set(again);
      EXPECT_EQ(again.ToJsonString(), next.text);
      EXPECT_EQ(WorkingAccessors(again), next.accessor);
    }
    copy.Clear();
    EXPECT_EQ(copy.ToJsonString(), "null");
  }
}

TEST(JsonValueTest, CopyingAnArrayIsDeep) {
  JsonValue source;
  source.PushBack(JsonValue(1));
  JsonValue inner;
  inner.PushBack(JsonValue("x"));
  source.PushBack(inner);
  JsonValue copy(source);
  copy.PushBack(JsonValue(3));
  EXPECT_EQ(source.ToJsonString(), "[1, [\"x\"]]");
  EXPECT_EQ(copy.ToJsonString(), "[1, [\"x\"], 3]");

  JsonValue assigned;
  assigned = source;
  assigned.SetValue(4);
  EXPECT_EQ(source.ToJsonString(), "[1, [\"x\"]]");
  EXPECT_EQ(assigned.ToJsonString(), "4");
}

TEST(JsonValueTest, CopyingAnObjectIsDeep) {
  JsonObject object;
  object.SetProperty("a", JsonValue("x"));
  JsonValue source(object);
  JsonValue copy = source;
  JsonObject changed = copy.GetAsObject();
  changed.SetProperty("b", JsonValue(2));
  copy.SetValue(changed);
  EXPECT_EQ(source.ToJsonString(), "{\"a\": \"x\"}");
  EXPECT_EQ(copy.ToJsonString(), "{\"a\": \"x\", \"b\": 2}");
}

TEST(JsonValueTest, SelfAssignmentKeepsTheValue) {
  JsonValue value(std::vector<JsonValue>{JsonValue(1), JsonValue("a")});
  JsonValue& alias = value;
  value = alias;
  EXPECT_EQ(value.ToJsonString(), "[1, \"a\"]");
  value = std::move(alias);
  EXPECT_EQ(value.ToJsonString(), "[1, \"a\"]");
}

TEST(JsonValueTest, AssigningAPartOfItselfIsSafe) {
  JsonValue value = Read("[[1, 2], \"x\"]");
  value = value.GetAsArray()[0];
  EXPECT_EQ(value.ToJsonString(), "[1, 2]");
  value.SetValue(value.GetAsArray());
  EXPECT_EQ(value.ToJsonString(), "[1, 2]");
  for (int i = 0; i < 100; ++i) value.PushBack(value.GetAsArray()[0]);
  EXPECT_EQ(value.GetAsArray().size(), 102u);
  EXPECT_EQ(value.GetAsArray()[101].GetAsInt(), 1);
  value.PushBack(value);
  EXPECT_EQ(value.GetAsArray().size(), 103u);
  EXPECT_EQ(value.GetAsArray()[102].GetAsArray().size(), 102u);

  JsonValue text("same");
  text.SetValue(text.GetAsString());
  EXPECT_EQ(text.GetAsString(), "same");

  JsonValue object = Read("{\"a\": {\"b\": 1}}");
  object.SetValue(object.GetAsObject().GetProperty("a").GetAsObject());
  EXPECT_EQ(object.ToJsonString(), "{\"b\": 1}");

  JsonValue nested = Read("[\"[5, 6]\"]");
  EXPECT_TRUE(nested.FromJsonString(nested.GetAsArray()[0].GetAsString()));
  EXPECT_EQ(nested.ToJsonString(), "[5, 6]");
}

TEST(JsonValueTest, MovingLeavesTheSourceNullAndUsable) {
  JsonValue source = Read("[1, {\"a\": \"b\"}]");
  JsonValue target(std::move(source));
  EXPECT_EQ(target.ToJsonString(), "[1, {\"a\": \"b\"}]");
  EXPECT_EQ(source.GetType(), JsonValue::Null);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(source.ToJsonString(), "null");
  EXPECT_EQ(WorkingAccessors(source), "");
  JsonValue copyOfMoved(source);
  EXPECT_EQ(copyOfMoved.GetType(), JsonValue::Null);
  source.Clear();
  EXPECT_EQ(source.GetType(), JsonValue::Null);
  source.PushBack(JsonValue(1));
  EXPECT_EQ(source.ToJsonString(), "[1]");

  JsonValue other(5);
  other = std::move(target);
  EXPECT_EQ(other.ToJsonString(), "[1, {\"a\": \"b\"}]");
  EXPECT_EQ(target.GetType(), JsonValue::Null);  // NOLINT(bugprone-use-after-move)
  target.SetValue(2);
  EXPECT_EQ(target.GetAsInt(), 2);
  JsonValue moved(std::move(target));
  target = other;
  EXPECT_EQ(target.ToJsonString(), "[1, {\"a\": \"b\"}]");
  JsonValue again(std::move(moved));
  EXPECT_TRUE(moved.FromJsonString("\"read\""));
  EXPECT_EQ(moved.GetAsString(), "read");

  std::vector<JsonValue> values;
  for (int i = 0; i < 100; ++i) values.emplace_back(i);
  JsonValue array(std::move(values));
  EXPECT_EQ(array.GetAsArray().size(), 100u);
  EXPECT_EQ(array.GetAsArray()[99].GetAsInt(), 99);
}

// ---------------------------------------------------------------------------
// Writing

TEST(JsonValueTest, WritesEveryType) {
  EXPECT_EQ(JsonValue().ToJsonString(), "null");
  EXPECT_EQ(JsonValue(-12).ToJsonString(), "-12");
  EXPECT_EQ(JsonValue(0).ToJsonString(), "0");
  EXPECT_EQ(JsonValue(std::numeric_limits<int>::min()).ToJsonString(), "-2147483648");
  EXPECT_EQ(JsonValue("a\"b").ToJsonString(), "\"a\\\"b\"");
  EXPECT_EQ(JsonValue(2.0).ToJsonString(), "2");
  EXPECT_EQ(JsonValue(0.1).ToJsonString(), "0.10000000000000001");
  EXPECT_EQ(JsonValue(1e20).ToJsonString(), "1e+20");
  EXPECT_EQ(JsonValue(-0.0).ToJsonString(), "-0");
  EXPECT_EQ(JsonValue(1e-300).ToJsonString(), "1e-300");
  EXPECT_EQ(JsonValue(true).ToJsonString(), "true");
  EXPECT_EQ(JsonValue(false).ToJsonString(), "false");
  EXPECT_EQ(JsonValue(JsonObject()).ToJsonString(), "{}");
  EXPECT_EQ(JsonValue(std::vector<JsonValue>()).ToJsonString(), "[]");
  EXPECT_EQ(JsonValue(std::vector<JsonValue>{JsonValue(1), JsonValue(), JsonValue("x"),
                                             JsonValue(std::vector<JsonValue>{})})
                .ToJsonString(),
            "[1, null, \"x\", []]");
}

TEST(JsonValueTest, WritesStringsWithTheEscapeTable) {
  EXPECT_EQ(JsonValue("\t/").ToJsonString(), "\"\\t\\/\"");
  EXPECT_EQ(JsonValue("\b\f\n\r\"\\").ToJsonString(), "\"\\b\\f\\n\\r\\\"\\\\\"");
  EXPECT_EQ(JsonValue("\x01").ToJsonString(), "\"\x01\"");
  EXPECT_EQ(JsonValue("\x80\xc3\xa9\xff").ToJsonString(), "\"\x80\xc3\xa9\xff\"");
  EXPECT_EQ(JsonValue(std::string("a\0b", 3)).ToJsonString(), std::string("\"a\0b\"", 5));
}

// ---------------------------------------------------------------------------
// Reading

TEST(JsonValueTest, ReadsIntegersAndDoubles) {
  JsonValue value = Read("  42\n");
  EXPECT_EQ(value.GetType(), JsonValue::Integer);
  EXPECT_EQ(value.GetAsInt(), 42);
  value = Read("4.5");
  EXPECT_EQ(value.GetType(), JsonValue::Double);
  EXPECT_EQ(value.GetAsDouble(), 4.5);
  value = Read("+7");
  EXPECT_EQ(value.GetAsInt(), 7);
  value = Read("-0");
  EXPECT_EQ(value.GetType(), JsonValue::Integer);
  value = Read("1.5e3");
  EXPECT_EQ(value.GetType(), JsonValue::Double);
  EXPECT_EQ(value.GetAsDouble(), 1500.0);
  value = Read("-.5");
  EXPECT_EQ(value.GetAsDouble(), -0.5);
  value = Read("\x01\x02 5 \x7f");
  EXPECT_EQ(value.GetAsInt(), 5);
}

TEST(JsonValueTest, ANumberWithoutAPointIsReadAsAnInteger) {
  JsonValue value;
  EXPECT_EQ(Thrown([&] { value.FromJsonString("1e3"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(Thrown([&] { value.FromJsonString(""); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("   "); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("-"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("2147483648"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("x"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("."); }), "runtime_error: JSON data is not a double");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("1.2.3"); }),
            "runtime_error: JSON data is not a double");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("1.0x"); }),
            "runtime_error: JSON data is not a double");
}

TEST(JsonValueTest, ADoubleWrittenWithoutAPointReadsBackAsAnInteger) {
  const JsonValue two(2.0);
  JsonValue back = Read(two.ToJsonString());
  EXPECT_EQ(back.GetType(), JsonValue::Integer);
  EXPECT_EQ(back.GetAsInt(), 2);
  const JsonValue large(1e20);
  JsonValue failed;
  EXPECT_EQ(Thrown([&] { failed.FromJsonString(large.ToJsonString()); }),
            "runtime_error: JSON data is not an integer");
  const JsonValue tenth(0.1);
  EXPECT_EQ(Read(tenth.ToJsonString()).GetAsDouble(), 0.1);
}

TEST(JsonValueTest, NullAndWordsStartingWithN) {
  JsonValue value(5);
  {
    StdoutCapture capture;
    EXPECT_FALSE(value.FromJsonString("nul"));
    EXPECT_EQ(capture.Text(), "");
  }
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  value.SetValue(5);
  EXPECT_TRUE(value.FromJsonString("null"));
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_TRUE(value.FromJsonString(" null\n"));
  EXPECT_FALSE(value.FromJsonString("nullx"));
  EXPECT_FALSE(value.FromJsonString("n"));
  EXPECT_EQ(Thrown([&] { value.FromJsonString("NULL"); }),
            "runtime_error: JSON data is not an integer");
}

TEST(JsonValueTest, ReadsBooleans) {
  EXPECT_TRUE(Read("true").GetAsBool());
  EXPECT_FALSE(Read(" false ").GetAsBool());
  JsonValue value;
  for (const char* text : {"tru", "t", "falsey", "f", "true false"}) {
    EXPECT_EQ(Thrown([&] { value.FromJsonString(text); }),
              "runtime_error: JSON data is not a boolean")
        << text;
  }
  EXPECT_EQ(Thrown([&] { value.FromJsonString("TRUE"); }),
            "runtime_error: JSON data is not an integer");
}

TEST(JsonValueTest, ReadsStrings) {
  EXPECT_EQ(Read("\"a\\u0041\"").GetAsString(), "a0041");
  EXPECT_EQ(Read("\"ab\"cd").GetAsString(), "ab");
  EXPECT_EQ(Read("\"\\\"\"").GetAsString(), "\"");
  EXPECT_EQ(Read("\"\\t\\/\"").GetAsString(), "\t/");
  EXPECT_EQ(Read("\"\x01\x80\xff\"").GetAsString(), "\x01\x80\xff");
  JsonValue value;
  EXPECT_EQ(Thrown([&] { value.FromJsonString("\"a\\x\""); }),
            "runtime_error: Invalid escape character");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("\"abc"); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("\"abc\\"); }),
            "runtime_error: JSON data is not a string");
}

TEST(JsonValueTest, ReadsAndWritesAMixedArray) {
  const JsonValue value = Read("[1, \"x\", [2,3], {\"k\": true}]");
  ASSERT_EQ(value.GetType(), JsonValue::Array);
  const std::vector<JsonValue>& elements = value.GetAsArray();
  ASSERT_EQ(elements.size(), 4u);
  EXPECT_EQ(elements[0].GetAsInt(), 1);
  EXPECT_EQ(elements[1].GetAsString(), "x");
  EXPECT_EQ(elements[2].GetAsArray().size(), 2u);
  EXPECT_TRUE(elements[3].GetAsObject().GetProperty("k").GetAsBool());
  EXPECT_EQ(value.ToJsonString(), "[1, \"x\", [2, 3], {\"k\": true}]");
}

TEST(JsonValueTest, ArrayLeniencies) {
  EXPECT_EQ(Read("[1,,2]").ToJsonString(), "[1, 2]");
  EXPECT_EQ(Read("[1,]").ToJsonString(), "[1]");
  EXPECT_EQ(Read("[1] trailing").ToJsonString(), "[1]");
  EXPECT_EQ(Read("[,]").ToJsonString(), "[]");
  EXPECT_EQ(Read("[]").ToJsonString(), "[]");
  EXPECT_EQ(Read(" [ ] ").ToJsonString(), "[]");
  EXPECT_EQ(Read("[null]").ToJsonString(), "[null]");
}

TEST(JsonValueTest, ArrayFailures) {
  JsonValue value(1);
  EXPECT_EQ(Thrown([&] { value.FromJsonString("[\"x\", [1, 2]"); }),
            "runtime_error: JSON data is not an array");
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_EQ(Thrown([&] { value.FromJsonString("["); }), "runtime_error: JSON data is not an array");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("[1x]"); }),
            "runtime_error: JSON data is not an integer");
  StdoutCapture capture;
  value.SetValue(1);
  EXPECT_FALSE(value.FromJsonString("[nul]"));
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_FALSE(value.FromJsonString("[\"a"));
  EXPECT_FALSE(value.FromJsonString("[[1"));
  EXPECT_FALSE(value.FromJsonString("[{\"a\" 1}]"));
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
}

TEST(JsonValueTest, ElementsAreReadInOrderAndTheFirstFailureDecides) {
  JsonValue value;
  EXPECT_FALSE(value.FromJsonString("[1, nul, 2x]"));
  EXPECT_EQ(Thrown([&] { value.FromJsonString("[1x, nul]"); }),
            "runtime_error: JSON data is not an integer");
  // A structural failure of the array itself comes before reading any element.
  EXPECT_FALSE(value.FromJsonString("[1x, \"open"));
}

TEST(JsonValueTest, ReadsObjects) {
  const JsonValue value = Read("{\"b\": 1, \"a\": 2, \"b\": 3}");
  ASSERT_EQ(value.GetType(), JsonValue::Object);
  EXPECT_EQ(value.GetAsObject().GetProperty("a").GetAsInt(), 2);
  EXPECT_EQ(value.GetAsObject().GetProperty("b").GetAsInt(), 3);
  EXPECT_EQ(value.ToJsonString(), "{\"a\": 2, \"b\": 3}");
  EXPECT_EQ(Read("{}").ToJsonString(), "{}");
  EXPECT_EQ(Read("{\"a\": 1x, \"a\": 2}").ToJsonString(), "{\"a\": 2}");
  EXPECT_EQ(Read("{\"a\": [1, {\"b\": [true, null]}], \"c\": \"}\"} x").ToJsonString(),
            "{\"a\": [1, {\"b\": [true, null]}], \"c\": \"}\"}");
}

TEST(JsonValueTest, ObjectFailures) {
  JsonValue value(1);
  EXPECT_EQ(Thrown([&] { value.FromJsonString("{a: 1}"); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  value.SetValue(1);
  EXPECT_FALSE(value.FromJsonString("{\"a\" 1}"));
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  EXPECT_EQ(Thrown([&] { value.FromJsonString("{\"a\": 1"); }),
            "runtime_error: JSON data is not an object");
  EXPECT_FALSE(value.FromJsonString("{\"a\": nul}"));
  // Values are read in name order: "a" before "b".
  EXPECT_EQ(Thrown([&] { value.FromJsonString("{\"b\": nul, \"a\": 1x}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_FALSE(value.FromJsonString("{\"a\": nul, \"b\": 1x}"));
}

TEST(JsonValueTest, AfterAFailureTheValueIsNull) {
  JsonValue value(std::vector<JsonValue>{JsonValue(1)});
  EXPECT_FALSE(value.FromJsonString("nope"));
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  value.SetValue("s");
  EXPECT_EQ(Thrown([&] { value.FromJsonString("[1, 2"); }),
            "runtime_error: JSON data is not an array");
  EXPECT_EQ(value.GetType(), JsonValue::Null);
  value.SetValue(JsonObject());
  EXPECT_EQ(Thrown([&] { value.FromJsonString("tru"); }),
            "runtime_error: JSON data is not a boolean");
  EXPECT_EQ(value.GetType(), JsonValue::Null);
}

TEST(JsonValueTest, RoundTripsEveryType) {
  const char* texts[] = {"null",
                         "-12",
                         "0",
                         "2147483647",
                         "\"x\\ty\\/z\\\\\"",
                         "\"\x01\x80\xff\"",
                         "0.10000000000000001",
                         "-2.5",
                         "true",
                         "false",
                         "{}",
                         "[]",
                         "{\"a\": [1, 2.5, \"s\", null, true], \"b\": {\"c\": {}}}",
                         "[[[]], [{}], {\" \": 1}]"};
  for (const char* text : texts) {
    const JsonValue value = Read(text);
    EXPECT_EQ(value.ToJsonString(), text);
    EXPECT_EQ(Read(value.ToJsonString()).ToJsonString(), text);
  }
}

TEST(JsonValueTest, AnEmptyPropertyNameIsWrittenButDoesNotReadBack) {
  JsonObject object;
  object.SetProperty("", JsonValue(1));
  const JsonValue value(object);
  EXPECT_EQ(value.ToJsonString(), "{\"\": 1}");
  JsonValue back;
  EXPECT_FALSE(back.FromJsonString(value.ToJsonString()));
  EXPECT_EQ(back.GetType(), JsonValue::Null);
}

}  // namespace
