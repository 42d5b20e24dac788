#include "wevlin/infrastructure/interop/JsonObject.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonObject;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;
using wevlin_test::StdoutCapture;
using wevlin_test::Thrown;

std::vector<std::string> Names(const JsonObject& object) {
  std::vector<std::string> names;
  for (const auto& property : object.GetAllProperties()) names.push_back(property.first);
  return names;
}

using NameList = std::vector<std::string>;

TEST(JsonObjectTest, StartsEmpty) {
  const JsonObject object;
  EXPECT_TRUE(object.GetAllProperties().empty());
  EXPECT_FALSE(object.HasProperty("a"));
  EXPECT_FALSE(object.HasProperty(""));
  EXPECT_EQ(object.ToJsonString(), "{}");
}

TEST(JsonObjectTest, GetPropertyOfAnAbsentNameThrows) {
  JsonObject object;
  object.SetProperty("a", JsonValue(1));
  EXPECT_EQ(Thrown([&] { object.GetProperty("b"); }), "runtime_error: JSON Object key not found.");
  EXPECT_EQ(Thrown([&] { object.GetProperty("A"); }), "runtime_error: JSON Object key not found.");
  EXPECT_EQ(Thrown([&] { JsonObject().GetProperty(""); }),
            "runtime_error: JSON Object key not found.");
}

TEST(JsonObjectTest, PropertiesAreKeptInNameOrder) {
  JsonObject object;
  object.SetProperty("b", JsonValue(1));
  object.SetProperty("a", JsonValue(2));
  EXPECT_EQ(Names(object), (NameList{"a", "b"}));
  EXPECT_EQ(object.ToJsonString(), "{\"a\": 2, \"b\": 1}");
}

TEST(JsonObjectTest, SettingANameAgainReplacesItsValue) {
  JsonObject object;
  object.SetProperty("b", JsonValue(1));
  object.SetProperty("a", JsonValue(2));
  object.SetProperty("a", JsonValue("again"));
  EXPECT_EQ(object.GetAllProperties().size(), 2u);
  EXPECT_EQ(object.GetProperty("a").GetAsString(), "again");
  EXPECT_TRUE(object.HasProperty("a"));
  EXPECT_EQ(object.ToJsonString(), "{\"a\": \"again\", \"b\": 1}");
}

TEST(JsonObjectTest, NamesSortByUnsignedBytes) {
  JsonObject object;
  for (const char* name : {"z", "\x80", "A", "a", "", "\xff", "a\x01", "aa", "B", "~"}) {
    object.SetProperty(name, JsonValue(1));
  }
  // std::less<std::string> compares the bytes as unsigned char, so bytes from
  // 128 up come after every ASCII byte.
  EXPECT_EQ(Names(object), (NameList{"", "A", "B", "a", "a\x01", "aa", "z", "~", "\x80", "\xff"}));
  EXPECT_TRUE(std::less<std::string>()("z", "\x80"));
}

TEST(JsonObjectTest, NamesAreWrittenWithoutEscaping) {
  JsonObject object;
  object.SetProperty("a\"b", JsonValue(1));
  object.SetProperty("c\\d/\t", JsonValue("e/"));
  EXPECT_EQ(object.ToJsonString(), "{\"a\"b\": 1, \"c\\d/\t\": \"e\\/\"}");
}

TEST(JsonObjectTest, SetPropertyCopiesTheValue) {
  JsonValue value("before");
  JsonObject object;
  object.SetProperty("a", value);
  value.SetValue("after");
  EXPECT_EQ(object.GetProperty("a").GetAsString(), "before");
}

TEST(JsonObjectTest, SetPropertyFromATemporaryTakesIt) {
  JsonObject object;
  JsonValue value(std::vector<JsonValue>{JsonValue(1), JsonValue(2)});
  object.SetProperty("list", std::move(value));
  EXPECT_EQ(value.GetType(), JsonValue::Null);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(object.ToJsonString(), "{\"list\": [1, 2]}");
  object.SetProperty("list", JsonValue(3));
  EXPECT_EQ(object.ToJsonString(), "{\"list\": 3}");
}

TEST(JsonObjectTest, SettingAValueFromInsideTheObjectIsSafe) {
  JsonObject object;
  ASSERT_TRUE(object.FromJsonString("{\"a\": {\"x\": [1, 2]}, \"b\": 0}"));
  object.SetProperty("b", object.GetProperty("a"));
  object.SetProperty("a", object.GetProperty("a").GetAsObject().GetProperty("x"));
  EXPECT_EQ(object.ToJsonString(), "{\"a\": [1, 2], \"b\": {\"x\": [1, 2]}}");
  object = object.GetProperty("b").GetAsObject();
  EXPECT_EQ(object.ToJsonString(), "{\"x\": [1, 2]}");
  const JsonObject& self = object;
  object = self;
  EXPECT_EQ(object.ToJsonString(), "{\"x\": [1, 2]}");
}

TEST(JsonObjectTest, CopiesAreDeep) {
  JsonObject source;
  source.SetProperty("a", JsonValue(std::vector<JsonValue>{JsonValue(1)}));
  JsonObject copy(source);
  copy.SetProperty("a", JsonValue(2));
  copy.SetProperty("b", JsonValue(3));
  EXPECT_EQ(source.ToJsonString(), "{\"a\": [1]}");
  JsonObject assigned;
  assigned.SetProperty("old", JsonValue(0));
  assigned = source;
  EXPECT_EQ(assigned.ToJsonString(), "{\"a\": [1]}");
  assigned.SetProperty("c", JsonValue());
  EXPECT_EQ(source.ToJsonString(), "{\"a\": [1]}");
}

TEST(JsonObjectTest, MovingLeavesTheSourceEmpty) {
  JsonObject source;
  source.SetProperty("a", JsonValue(1));
  JsonObject target(std::move(source));
  EXPECT_EQ(target.ToJsonString(), "{\"a\": 1}");
  EXPECT_EQ(source.ToJsonString(), "{}");  // NOLINT(bugprone-use-after-move)
  JsonObject other;
  other.SetProperty("x", JsonValue(2));
  other = std::move(target);
  EXPECT_EQ(other.ToJsonString(), "{\"a\": 1}");
  EXPECT_TRUE(target.GetAllProperties().empty());  // NOLINT(bugprone-use-after-move)
}

TEST(JsonObjectTest, DestroysThroughTheBaseWithTheVirtualDestructor) {
  struct Derived : JsonObject {
    explicit Derived(bool* destroyed) : destroyed_(destroyed) {}
    ~Derived() override { *destroyed_ = true; }
    bool* destroyed_;
  };
  bool destroyed = false;
  JsonObject* object = new Derived(&destroyed);
  delete object;
  EXPECT_TRUE(destroyed);
}

TEST(JsonObjectTest, WritesNestedValues) {
  JsonObject inner;
  inner.SetProperty("n", JsonValue());
  JsonObject object;
  object.SetProperty("s", JsonValue("x"));
  object.SetProperty("o", JsonValue(inner));
  object.SetProperty("d", JsonValue(0.1));
  object.SetProperty("a", JsonValue(std::vector<JsonValue>{JsonValue(true), JsonValue(-1)}));
  EXPECT_EQ(object.ToJsonString(),
            "{\"a\": [true, -1], \"d\": 0.10000000000000001, \"o\": {\"n\": null}, \"s\": \"x\"}");
}

TEST(JsonObjectTest, FromJsonStringReplacesTheWholeContent) {
  JsonObject object;
  object.SetProperty("old", JsonValue(1));
  EXPECT_TRUE(object.FromJsonString(" {\"b\": 1, \"a\": 2, \"b\": 3} "));
  EXPECT_EQ(Names(object), (NameList{"a", "b"}));
  EXPECT_EQ(object.GetProperty("b").GetAsInt(), 3);
  EXPECT_TRUE(object.FromJsonString("{}"));
  EXPECT_TRUE(object.GetAllProperties().empty());
}

TEST(JsonObjectTest, FromJsonStringDecodesEscapedNames) {
  JsonObject object;
  ASSERT_TRUE(object.FromJsonString("{\"a\\\"b\": 1, \"c\\u0041\": 2}"));
  EXPECT_EQ(Names(object), (NameList{"a\"b", "c0041"}));
}

TEST(JsonObjectTest, FailureLeavesTheObjectUnchanged) {
  JsonObject object;
  object.SetProperty("kept", JsonValue("yes"));
  const std::string before = object.ToJsonString();
  StdoutCapture capture;
  EXPECT_FALSE(object.FromJsonString("{\"a\" 1}"));
  EXPECT_EQ(object.ToJsonString(), before);
  EXPECT_FALSE(object.FromJsonString("{\"a\": 1, \"b\": nul}"));
  EXPECT_EQ(object.ToJsonString(), before);
  EXPECT_FALSE(object.FromJsonString("{\"a\": [1, 2}"));
  EXPECT_EQ(object.ToJsonString(), before);
  EXPECT_EQ(Thrown([&] { object.FromJsonString("{a: 1}"); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { object.FromJsonString("{\"a\": 1"); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(Thrown([&] { object.FromJsonString("[1]"); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(Thrown([&] { object.FromJsonString(""); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(Thrown([&] { object.FromJsonString("{\"a\": \"x\\q\"}"); }),
            "runtime_error: Invalid escape character");
  EXPECT_EQ(Thrown([&] { object.FromJsonString("{\"a\": 1, \"b\": 1.5.5}"); }),
            "runtime_error: JSON data is not a double");
  EXPECT_EQ(object.ToJsonString(), before);
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
}

TEST(JsonObjectTest, ValuesAreReadInNameOrder) {
  JsonObject object;
  EXPECT_EQ(Thrown([&] { object.FromJsonString("{\"b\": nul, \"a\": 1x}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_FALSE(object.FromJsonString("{\"a\": nul, \"b\": 1x}"));
  // An earlier duplicate is never read.
  EXPECT_TRUE(object.FromJsonString("{\"a\": 1x, \"a\": 2}"));
  EXPECT_EQ(object.ToJsonString(), "{\"a\": 2}");
}

TEST(JsonObjectTest, RoundTrips) {
  const std::string text =
      "{\"\x80\": 1, \"a\": [1, 2.5, \"s\\\"\", null], \"b\": {\"c\": false}, \"z\": \"\x01\"}";
  JsonObject object;
  ASSERT_TRUE(object.FromJsonString(text));
  EXPECT_EQ(Names(object), (NameList{"a", "b", "z", "\x80"}));
  const std::string written = object.ToJsonString();
  EXPECT_EQ(written,
            "{\"a\": [1, 2.5, \"s\\\"\", null], \"b\": {\"c\": false}, \"z\": \"\x01\", \"\x80\": "
            "1}");
  JsonObject back;
  ASSERT_TRUE(back.FromJsonString(written));
  EXPECT_EQ(back.ToJsonString(), written);
}

}  // namespace
