#include "wevlin/infrastructure/interop/DataContract.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataContract;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;
using wevlin_test::StdoutCapture;
using wevlin_test::Thrown;

class Empty : public DataContract {};

// An int "a" and a string "b".
class IntAndString final : public DataContract {
 public:
  IntAndString() { Register(); }
  // The base copy constructor registers nothing, so a copyable contract
  // registers its fields again and then copies them.
  IntAndString(const IntAndString& other) : DataContract(other), a(other.a), b(other.b) {
    Register();
  }
  IntAndString& operator=(const IntAndString&) = default;
  int a = 1;
  std::string b = "init";

 private:
  void Register() {
    RegisterField("a", a);
    RegisterField("b", b);
  }
};

class Scalars : public DataContract {
 public:
  Scalars() {
    RegisterField("i", i);
    RegisterField("f", f);
    RegisterField("d", d);
    RegisterField("flag", flag);
    RegisterField("s", s);
  }
  int i = 0;
  float f = 0.0f;
  double d = 0.0;
  bool flag = false;
  std::string s;
};

class Inner : public DataContract {
 public:
  Inner() {
    RegisterField("x", x);
    RegisterField("v", v);
  }
  int x = 0;
  JsonValue v;
};

class Everything : public DataContract {
 public:
  Everything() {
    RegisterField("int", integer);
    RegisterField("float", single);
    RegisterField("double", number);
    RegisterField("bool", flag);
    RegisterField("string", text);
    RegisterField("json", json);
    RegisterField("sub", sub);
    RegisterField("empty", empty);
    RegisterField("ints", ints);
    RegisterField("floats", floats);
    RegisterField("doubles", doubles);
    RegisterField("bools", bools);
    RegisterField("strings", strings);
  }
  int integer = 0;
  float single = 0.0f;
  double number = 0.0;
  bool flag = false;
  std::string text;
  JsonValue json;
  Inner sub;
  Empty empty;
  std::vector<int> ints;
  std::vector<float> floats;
  std::vector<double> doubles;
  std::vector<bool> bools;
  std::vector<std::string> strings;
};

class Strings : public DataContract {
 public:
  Strings() { RegisterField("list", list); }
  std::vector<std::string> list;
};

class Ints : public DataContract {
 public:
  Ints() { RegisterField("list", list); }
  std::vector<int> list;
};

class Bools : public DataContract {
 public:
  Bools() { RegisterField("list", list); }
  std::vector<bool> list;
};

class Values : public DataContract {
 public:
  Values() {
    RegisterField("first", first);
    RegisterField("v", v);
    RegisterField("last", last);
  }
  int first = 0;
  JsonValue v;
  int last = 0;
};

class WithSub : public DataContract {
 public:
  WithSub() {
    RegisterField("sub", sub);
    RegisterField("n", n);
  }
  Values sub;
  int n = 0;
};

// Registers a list of records with its own element reader, which takes only
// elements that read as an IntAndString.
class Records : public DataContract {
 public:
  Records() { RegisterCollection("items", &items, &AddItem, &GetItems); }
  std::vector<IntAndString> items;

 private:
  static bool AddItem(void* context, const std::string& text) {
    IntAndString item;
    bool ok = false;
    try {
      ok = item.FromJsonString(text);
    } catch (const std::runtime_error&) {
      ok = false;
    }
    if (ok) {
      auto* list = static_cast<std::vector<IntAndString>*>(context);
      list->push_back(item);
    }
    return ok;
  }
  static void GetItems(void* context, std::vector<std::string>& texts) {
    for (const IntAndString& item : *static_cast<std::vector<IntAndString>*>(context)) {
      texts.push_back(item.ToJsonString());
    }
  }
};

class Twice : public DataContract {
 public:
  Twice() {
    RegisterField("k", first);
    RegisterField("k", second);
  }
  int first = 1;
  int second = 2;
};

class Copyable : public DataContract {
 public:
  Copyable() { RegisterField("a", a); }
  // The base copy constructor registers nothing.
  Copyable(const Copyable& other) : DataContract(other), a(other.a) {}
  Copyable& operator=(const Copyable&) = default;
  int a = 0;
};

class OtherShape : public DataContract {
 public:
  OtherShape() {
    RegisterField("b", b);
    RegisterField("c", c);
  }
  std::string b = "mine";
  int c = 7;
};

class Overriding : public DataContract {
 public:
  std::string ToJsonString() const override { return "null"; }
};

class HoldsOverriding : public DataContract {
 public:
  HoldsOverriding() { RegisterField("o", o); }
  Overriding o;
};

// ---------------------------------------------------------------------------

TEST(DataContractTest, NoFieldsWritesEmptyObject) {
  EXPECT_EQ(Empty().ToJsonString(), "{}");
  Empty empty;
  EXPECT_TRUE(empty.FromJsonString("{\"a\": 1}"));
}

TEST(DataContractTest, WritesFieldsInRegistrationOrder) {
  Scalars scalars;
  scalars.i = -3;
  scalars.f = 0.1f;
  scalars.d = 0.1;
  scalars.flag = true;
  scalars.s = "x\ty";
  EXPECT_EQ(scalars.ToJsonString(),
            "{\"i\": -3, \"f\": 0.1, \"d\": 0.10000000000000001, \"flag\": true, \"s\": "
            "\"x\\ty\"}");
}

TEST(DataContractTest, WritesEveryKindOfField) {
  Everything all;
  EXPECT_EQ(all.ToJsonString(),
            "{\"int\": 0, \"float\": 0, \"double\": 0, \"bool\": false, \"string\": \"\", "
            "\"json\": null, \"sub\": {\"x\": 0, \"v\": null}, \"empty\": {}, \"ints\": [], "
            "\"floats\": [], \"doubles\": [], \"bools\": [], \"strings\": []}");
  all.integer = 5;
  all.single = 1.0f;
  all.number = 2.0;
  all.flag = true;
  all.text = "a/b";
  ASSERT_TRUE(all.json.FromJsonString("{\"k\": [1, \"v\"]}"));
  all.sub.x = 9;
  all.sub.v.SetValue("in");
  all.ints = {1, -2};
  all.floats = {0.1f, 2.5f};
  all.doubles = {0.1, 1e20};
  all.bools = {true, false};
  all.strings = {"a", "b\"c"};
  const std::string written = all.ToJsonString();
  EXPECT_EQ(written,
            "{\"int\": 5, \"float\": 1, \"double\": 2, \"bool\": true, \"string\": \"a\\/b\", "
            "\"json\": {\"k\": [1, \"v\"]}, \"sub\": {\"x\": 9, \"v\": \"in\"}, \"empty\": {}, "
            "\"ints\": [1, -2], \"floats\": [0.1, 2.5], \"doubles\": [0.10000000000000001, "
            "1e+20], \"bools\": [true, false], \"strings\": [\"a\", \"b\\\"c\"]}");

  Everything back;
  ASSERT_TRUE(back.FromJsonString(written));
  EXPECT_EQ(back.ToJsonString(), written);
  EXPECT_EQ(back.integer, 5);
  EXPECT_EQ(back.single, 1.0f);
  EXPECT_EQ(back.number, 2.0);
  EXPECT_TRUE(back.flag);
  EXPECT_EQ(back.text, "a/b");
  EXPECT_EQ(back.json.ToJsonString(), "{\"k\": [1, \"v\"]}");
  EXPECT_EQ(back.sub.x, 9);
  EXPECT_EQ(back.sub.v.GetAsString(), "in");
  EXPECT_EQ(back.ints, (std::vector<int>{1, -2}));
  EXPECT_EQ(back.floats, (std::vector<float>{0.1f, 2.5f}));
  EXPECT_EQ(back.doubles, (std::vector<double>{0.1, 1e20}));
  EXPECT_EQ(back.bools, (std::vector<bool>{true, false}));
  EXPECT_EQ(back.strings, (std::vector<std::string>{"a", "b\"c"}));
}

TEST(DataContractTest, AbsentFieldsKeepTheirValues) {
  IntAndString contract;
  EXPECT_TRUE(contract.FromJsonString("{\"b\": \"x\"}"));
  EXPECT_EQ(contract.a, 1);
  EXPECT_EQ(contract.b, "x");
  EXPECT_TRUE(contract.FromJsonString("{\"unknown\": [1, 2], \"a\": 4}"));
  EXPECT_EQ(contract.a, 4);
  EXPECT_EQ(contract.b, "x");
}

TEST(DataContractTest, AMistypedIntegerThrows) {
  IntAndString contract;
  EXPECT_EQ(Thrown([&] { contract.FromJsonString("{\"a\": \"5\"}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(contract.a, 1);
}

TEST(DataContractTest, AStringFieldKeepsAnUnquotedValueVerbatim) {
  IntAndString contract;
  EXPECT_TRUE(contract.FromJsonString("{\"b\": 5}"));
  EXPECT_EQ(contract.b, "5");
  EXPECT_TRUE(contract.FromJsonString("{\"b\": 5 }"));
  EXPECT_EQ(contract.b, "5 ");
  EXPECT_TRUE(contract.FromJsonString("{\"b\": [1, 2]\n, \"a\": 3}"));
  EXPECT_EQ(contract.b, "[1, 2]\n");
  EXPECT_TRUE(contract.FromJsonString("{\"b\": \"bad\\q\"}"));
  EXPECT_EQ(contract.b, "\"bad\\q\"");
  EXPECT_TRUE(contract.FromJsonString("{\"b\": \"ok\"tail }"));
  EXPECT_EQ(contract.b, "ok");
  EXPECT_TRUE(contract.FromJsonString("{\"b\": null}"));
  EXPECT_EQ(contract.b, "null");
}

TEST(DataContractTest, AMalformedObjectReadsTrueAndChangesNothing) {
  IntAndString contract;
  StdoutCapture capture;
  EXPECT_TRUE(contract.FromJsonString("{\"a\" 1}"));
  EXPECT_TRUE(contract.FromJsonString("{\"a\": 2,, \"b\": \"x\"}"));
  EXPECT_TRUE(contract.FromJsonString("{\"a\": 2, \"b\": \"x"));
  EXPECT_TRUE(contract.FromJsonString("{\"a\": 2, \"b\": [1}"));
  EXPECT_EQ(contract.a, 1);
  EXPECT_EQ(contract.b, "init");
  EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
}

TEST(DataContractTest, TextThatIsNotAnObjectThrows) {
  IntAndString contract;
  EXPECT_EQ(Thrown([&] { contract.FromJsonString("[1]"); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(Thrown([&] { contract.FromJsonString(""); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(Thrown([&] { contract.FromJsonString("{\"a\": 1"); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(Thrown([&] { contract.FromJsonString("{a: 1}"); }),
            "runtime_error: JSON data is not a string");
}

TEST(DataContractTest, FloatAndDoublePrecision) {
  Scalars scalars;
  scalars.f = 0.1f;
  scalars.d = 0.1;
  const std::string written = scalars.ToJsonString();
  EXPECT_NE(written.find("\"f\": 0.1,"), std::string::npos);
  EXPECT_NE(written.find("\"d\": 0.10000000000000001,"), std::string::npos);
  Scalars back;
  ASSERT_TRUE(back.FromJsonString(written));
  EXPECT_EQ(back.f, 0.1f);
  EXPECT_EQ(back.d, 0.1);
}

TEST(DataContractTest, ScalarFieldsAcceptWhatTheStreamAccepts) {
  Scalars scalars;
  ASSERT_TRUE(scalars.FromJsonString("{\"i\": +7, \"f\": 1e3, \"d\": 1e5, \"flag\": true}"));
  EXPECT_EQ(scalars.i, 7);
  EXPECT_EQ(scalars.f, 1000.0f);
  EXPECT_EQ(scalars.d, 100000.0);
  EXPECT_TRUE(scalars.flag);
  EXPECT_EQ(Thrown([&] { scalars.FromJsonString("{\"f\": 1e39}"); }),
            "runtime_error: JSON data is not a float");
  EXPECT_EQ(Thrown([&] { scalars.FromJsonString("{\"d\": \"1\"}"); }),
            "runtime_error: JSON data is not a double");
  EXPECT_EQ(Thrown([&] { scalars.FromJsonString("{\"flag\": 1}"); }),
            "runtime_error: JSON data is not a boolean");
  EXPECT_EQ(Thrown([&] { scalars.FromJsonString("{\"i\": 1.0}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(scalars.i, 7);
  EXPECT_EQ(scalars.f, 1000.0f);
  EXPECT_EQ(scalars.d, 100000.0);
  EXPECT_TRUE(scalars.flag);
}

TEST(DataContractTest, ExceptionsLeaveEarlierFieldsUpdated) {
  Scalars scalars;
  EXPECT_EQ(Thrown([&] { scalars.FromJsonString("{\"i\": 3, \"f\": x, \"d\": 2.5}"); }),
            "runtime_error: JSON data is not a float");
  EXPECT_EQ(scalars.i, 3);
  EXPECT_EQ(scalars.d, 0.0);
}

TEST(DataContractTest, AFieldThatReadsFalseStopsTheReadingWithOneLine) {
  Values values;
  StdoutCapture capture;
  EXPECT_FALSE(values.FromJsonString("{\"last\": 3, \"v\": nul, \"first\": 1}"));
  EXPECT_EQ(capture.Text(), "DataContract::FromJsonString: failed to read v from JSON data nul\n");
  EXPECT_EQ(values.first, 1);
  EXPECT_EQ(values.v.GetType(), JsonValue::Null);
  EXPECT_EQ(values.last, 0);
}

TEST(DataContractTest, TheFailureLineHoldsTheRawTextAsCut) {
  Values values;
  StdoutCapture capture;
  EXPECT_FALSE(values.FromJsonString("{\"v\": [1, nul] }"));
  EXPECT_EQ(capture.Text(),
            "DataContract::FromJsonString: failed to read v from JSON data [1, nul] \n");
}

TEST(DataContractTest, AFailingSubObjectWritesBothLines) {
  WithSub outer;
  StdoutCapture capture;
  EXPECT_FALSE(outer.FromJsonString("{\"n\": 4, \"sub\": {\"first\": 2, \"v\": nul}}"));
  EXPECT_EQ(capture.Text(),
            "DataContract::FromJsonString: failed to read v from JSON data nul\n"
            "DataContract::FromJsonString: failed to read sub from JSON data {\"first\": 2, "
            "\"v\": nul}\n");
  EXPECT_EQ(outer.sub.first, 2);
  EXPECT_EQ(outer.n, 0);
}

TEST(DataContractTest, SubObjects) {
  WithSub outer;
  ASSERT_TRUE(outer.FromJsonString("{\"sub\": {\"first\": 5, \"v\": [true]}, \"n\": 6}"));
  EXPECT_EQ(outer.sub.first, 5);
  EXPECT_EQ(outer.sub.v.ToJsonString(), "[true]");
  EXPECT_EQ(outer.n, 6);
  EXPECT_EQ(outer.ToJsonString(),
            "{\"sub\": {\"first\": 5, \"v\": [true], \"last\": 0}, \"n\": 6}");
  EXPECT_EQ(Thrown([&] { outer.FromJsonString("{\"sub\": 5}"); }),
            "runtime_error: JSON data is not an object");
}

TEST(DataContractTest, ASubObjectWithoutFieldsWritesEmptyObject) {
  Everything all;
  EXPECT_NE(all.ToJsonString().find("\"empty\": {}"), std::string::npos);
}

TEST(DataContractTest, ASubObjectIsWrittenThroughItsOverride) {
  HoldsOverriding holder;
  EXPECT_EQ(holder.ToJsonString(), "{\"o\": null}");
}

TEST(DataContractTest, StringVectorsWriteAndAppend) {
  Strings strings;
  strings.list = {"a", "b"};
  EXPECT_EQ(strings.ToJsonString(), "{\"list\": [\"a\", \"b\"]}");
  ASSERT_TRUE(strings.FromJsonString("{\"list\": [\"c\"]}"));
  EXPECT_EQ(strings.list, (std::vector<std::string>{"a", "b", "c"}));
  ASSERT_TRUE(strings.FromJsonString("{\"list\": [1, abc , \"d\\\"\",, \"\\x\"]}"));
  EXPECT_EQ(strings.list, (std::vector<std::string>{"a", "b", "c", "1", "abc ", "d\"", "\"\\x\""}));
}

TEST(DataContractTest, VectorsOfEveryElementType) {
  Everything all;
  ASSERT_TRUE(all.FromJsonString(
      "{\"ints\": [1, +2, -3], \"floats\": [0.5, 1e2], \"doubles\": [0.25, 1e-3], \"bools\": "
      "[true, false, true], \"strings\": [\"x\"]}"));
  EXPECT_EQ(all.ints, (std::vector<int>{1, 2, -3}));
  EXPECT_EQ(all.floats, (std::vector<float>{0.5f, 100.0f}));
  EXPECT_EQ(all.doubles, (std::vector<double>{0.25, 1e-3}));
  EXPECT_EQ(all.bools, (std::vector<bool>{true, false, true}));
  EXPECT_EQ(all.strings, (std::vector<std::string>{"x"}));
  ASSERT_TRUE(all.FromJsonString("{\"ints\": [], \"bools\": [false,]}"));
  EXPECT_EQ(all.ints, (std::vector<int>{1, 2, -3}));
  EXPECT_EQ(all.bools, (std::vector<bool>{true, false, true, false}));
}

TEST(DataContractTest, VectorElementFailuresThrow) {
  Ints ints;
  EXPECT_EQ(Thrown([&] { ints.FromJsonString("{\"list\": [1, \"x\", 3]}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(ints.list, (std::vector<int>{1}));
  EXPECT_EQ(Thrown([&] { ints.FromJsonString("{\"list\": 5}"); }),
            "runtime_error: JSON data is not an array");
  Bools bools;
  EXPECT_EQ(Thrown([&] { bools.FromJsonString("{\"list\": [1]}"); }),
            "runtime_error: JSON data is not a boolean");
}

TEST(DataContractTest, ACollectionSkipsElementsItsReaderRejects) {
  Records records;
  StdoutCapture capture;
  ASSERT_TRUE(records.FromJsonString(
      "{\"items\": [{\"a\": 1, \"b\": \"x\"}, 5, {\"a\": \"bad\"}, {\"a\" 2}, {\"a\": 3}]}"));
  ASSERT_EQ(records.items.size(), 3u);
  EXPECT_EQ(records.items[0].a, 1);
  EXPECT_EQ(records.items[0].b, "x");
  // {"a" 2} is malformed, which a contract reads as true without changes.
  EXPECT_EQ(records.items[1].a, 1);
  EXPECT_EQ(records.items[2].a, 3);
  EXPECT_EQ(records.ToJsonString(),
            "{\"items\": [{\"a\": 1, \"b\": \"x\"}, {\"a\": 1, \"b\": \"init\"}, {\"a\": 3, "
            "\"b\": \"init\"}]}");
  EXPECT_EQ(capture.Text(), "");
}

TEST(DataContractTest, ANameRegisteredTwiceIsWrittenTwiceAndReadIntoBoth) {
  Twice twice;
  EXPECT_EQ(twice.ToJsonString(), "{\"k\": 1, \"k\": 2}");
  ASSERT_TRUE(twice.FromJsonString("{\"k\": 9}"));
  EXPECT_EQ(twice.first, 9);
  EXPECT_EQ(twice.second, 9);
  // Of the two properties written, the last is read into both.
  Twice other;
  other.first = 3;
  other.second = 4;
  ASSERT_TRUE(twice.FromJsonString(other.ToJsonString()));
  EXPECT_EQ(twice.first, 4);
  EXPECT_EQ(twice.second, 4);
}

TEST(DataContractTest, KeysAreWrittenUnescaped) {
  class OddKey : public DataContract {
   public:
    OddKey() { RegisterField("a\"b/", value); }
    int value = 1;
  };
  EXPECT_EQ(OddKey().ToJsonString(), "{\"a\"b/\": 1}");
}

TEST(DataContractTest, StringFieldsKeepRawBytes) {
  Scalars scalars;
  scalars.s = std::string("\x01\x80\xff\"\\/", 6);
  const std::string written = scalars.ToJsonString();
  EXPECT_NE(written.find("\"s\": \"\x01\x80\xff\\\"\\\\\\/\"}"), std::string::npos);
  Scalars back;
  ASSERT_TRUE(back.FromJsonString(written));
  EXPECT_EQ(back.s, scalars.s);
}

TEST(DataContractTest, AssignmentCopiesTheFieldsBothRegister) {
  IntAndString source;
  source.a = 42;
  source.b = "copied";
  OtherShape target;
  static_cast<DataContract&>(target) = source;
  EXPECT_EQ(target.b, "copied");
  EXPECT_EQ(target.c, 7);

  Strings strings;
  strings.list = {"a"};
  Strings other;
  other.list = {"z"};
  static_cast<DataContract&>(other) = strings;
  // Reading appends to the vector.
  EXPECT_EQ(other.list, (std::vector<std::string>{"z", "a"}));
}

TEST(DataContractTest, SelfAssignmentChangesNothing) {
  Strings strings;
  strings.list = {"a"};
  DataContract& base = strings;
  base = strings;
  EXPECT_EQ(strings.list, (std::vector<std::string>{"a"}));
}

TEST(DataContractTest, TheCopyConstructorRegistersNothing) {
  Copyable source;
  source.a = 5;
  const Copyable copy(source);
  EXPECT_EQ(copy.a, 5);
  EXPECT_EQ(copy.ToJsonString(), "{}");
  EXPECT_EQ(source.ToJsonString(), "{\"a\": 5}");
  Copyable assigned;
  assigned = source;
  EXPECT_EQ(assigned.a, 5);
  EXPECT_EQ(assigned.ToJsonString(), "{\"a\": 5}");
}

TEST(DataContractTest, JsonValueFields) {
  Values values;
  ASSERT_TRUE(values.FromJsonString("{\"v\": {\"b\": [1, 2.5], \"a\": \"s\"}}"));
  EXPECT_EQ(values.v.ToJsonString(), "{\"a\": \"s\", \"b\": [1, 2.5]}");
  EXPECT_EQ(values.ToJsonString(),
            "{\"first\": 0, \"v\": {\"a\": \"s\", \"b\": [1, 2.5]}, \"last\": 0}");
  EXPECT_EQ(Thrown([&] { values.FromJsonString("{\"v\": 1e3}"); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_EQ(values.v.GetType(), JsonValue::Null);
}

}  // namespace

namespace {

// An object of `count` properties named p0, p1, ... with `middle` inserted
// after the first half; the properties "a" and "b" of IntAndString stand
// wherever `middle` puts them.
std::string ManyProperties(int count, const std::string& middle) {
  std::string text = "{";
  for (int i = 0; i < count; ++i) {
    if (i == count / 2) text += middle + ", ";
    text += "\"p" + std::to_string(i) + "\": " + std::to_string(i) + ", ";
  }
  return text + "\"last\": 0}";
}

}  // namespace

TEST(DataContractTest, OfPropertiesWithTheSameNameTheLastOneIsRead) {
  IntAndString contract;
  EXPECT_TRUE(contract.FromJsonString("{\"a\": 1, \"b\": \"x\", \"a\": 2, \"b\": \"y\"}"));
  EXPECT_EQ(contract.a, 2);
  EXPECT_EQ(contract.b, "y");
  // The same among many properties.
  IntAndString many;
  EXPECT_TRUE(many.FromJsonString(
      ManyProperties(40, "\"b\": \"first\", \"a\": 7, \"zz\": 1, \"a\": 8, \"b\": \"second\"")));
  EXPECT_EQ(many.a, 8);
  EXPECT_EQ(many.b, "second");
}

TEST(DataContractTest, AFieldAmongManyPropertiesIsFoundAndAMissingOneKeepsItsValue) {
  IntAndString contract;
  contract.a = 41;
  EXPECT_TRUE(contract.FromJsonString(ManyProperties(100, "\"b\": \"found\"")));
  EXPECT_EQ(contract.a, 41);
  EXPECT_EQ(contract.b, "found");
  EXPECT_EQ(Thrown([&] { contract.FromJsonString(ManyProperties(100, "\"a\": \"5\"")); }),
            "runtime_error: JSON data is not an integer");
}
