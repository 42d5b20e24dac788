// The JSON text routines take quick paths for the common case: a one-pass
// reading of standard JSON, a writer that stores straight into the output
// buffer, and an integer-arithmetic formatting of doubles with seventeen
// digits. Each must give exactly what the general routine (or the string
// stream that defines the format) gives. These tests compare them on large
// numbers of texts and values, and on the cases at the edges of each path.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace json = interop::internal;
using interop::JsonObject;
using interop::JsonValue;

// ---------------------------------------------------------------------------
// Doubles with seventeen digits.

// The definition of the format: a string stream with precision 17 in the
// classic locale.
std::string StreamWrites(double value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(17);
  stream << value;
  return stream.str();
}

double FromBits(std::uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

void ExpectWritesAsStream(double value) {
  ASSERT_EQ(json::FormatDouble(value), StreamWrites(value)) << "bits " << std::hex << [&] {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
  }();
}

TEST(JsonTextFastPathsTest, DoublesOfEveryMagnitudeAreWrittenAsTheStreamWritesThem) {
  std::mt19937_64 random(17);
  for (int i = 0; i < 100000; ++i) {
    const double value = FromBits(random());
    if (std::isfinite(value)) ExpectWritesAsStream(value);
  }
}

TEST(JsonTextFastPathsTest, DoublesAroundEveryPowerOfTenAreWrittenAsTheStreamWritesThem) {
  // The decimal exponent changes at a power of ten, and a double just below
  // one may round up to it at seventeen digits.
  for (int exponent = -30; exponent <= 45; ++exponent) {
    const double power = std::pow(10.0, exponent);
    double below = power;
    double above = power;
    for (int step = 0; step < 40; ++step) {
      for (const double value : {below, above, -below, -above}) {
        SCOPED_TRACE(exponent);
        ExpectWritesAsStream(value);
      }
      below = std::nextafter(below, 0.0);
      above = std::nextafter(above, std::numeric_limits<double>::infinity());
    }
  }
}

TEST(JsonTextFastPathsTest, DoublesNearOneAreWrittenAsTheStreamWritesThem) {
  std::mt19937_64 random(18);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<int> power(-12, 36);
  for (int i = 0; i < 100000; ++i) {
    ExpectWritesAsStream(unit(random) * std::pow(10.0, power(random)));
  }
}

TEST(JsonTextFastPathsTest, ShortDecimalsAreWrittenAsTheStreamWritesThem) {
  // Values read from short decimal texts, as coordinates and prices are.
  std::mt19937_64 random(19);
  for (int i = 0; i < 50000; ++i) {
    const int digits = 1 + static_cast<int>(random() % 17);
    std::string text = random() % 2 == 0 ? "-" : "";
    for (int d = 0; d < digits; ++d) text += static_cast<char>('0' + random() % 10);
    text.insert(text.size() - random() % (digits + 1), ".");
    if (text.back() == '.') text += '0';
    if (text.front() == '.' || (text[0] == '-' && text[1] == '.')) {
      text.insert(text.front() == '-' ? 1 : 0, "0");
    }
    ExpectWritesAsStream(std::strtod(text.c_str(), nullptr));
  }
}

TEST(JsonTextFastPathsTest, IntegersAndHalvesAreWrittenAsTheStreamWritesThem) {
  // Whole numbers round exactly; quarters of 16-digit odd numbers have 18
  // digits ending in 5, so their seventeenth digit is a tie, which goes to
  // the even digit.
  std::mt19937_64 random(20);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t whole = random() % (std::uint64_t{1} << 53);
    ExpectWritesAsStream(static_cast<double>(whole));
    ExpectWritesAsStream(-static_cast<double>(whole) * 1024.0);
    const std::uint64_t odd = (std::uint64_t{4500000000000000} + random() % 4500000000000000) | 1;
    ExpectWritesAsStream(static_cast<double>(odd) / 4.0);
    ExpectWritesAsStream(static_cast<double>(odd) / 2.0);
  }
  for (int power = -30; power <= 40; ++power) {
    const double ten = std::pow(10.0, power);
    ExpectWritesAsStream(ten);
    ExpectWritesAsStream(std::nextafter(ten, 0.0));
    ExpectWritesAsStream(std::nextafter(ten, 1e300));
    ExpectWritesAsStream(ten * 9.9999999999999995);
  }
  ExpectWritesAsStream(std::numeric_limits<double>::min());
  ExpectWritesAsStream(std::numeric_limits<double>::denorm_min());
  ExpectWritesAsStream(std::numeric_limits<double>::max());
  ExpectWritesAsStream(-0.0);
  ExpectWritesAsStream(0.0);
}

// ---------------------------------------------------------------------------
// Reading: the one-pass reading against the general one.

// Captures the library's log lines.
class LogCollector {
 public:
  LogCollector() {
    previous_ = base::SetLogSink([this](const std::string& line) { lines_ += line + "\n"; });
  }
  ~LogCollector() { base::SetLogSink(previous_); }
  std::string Take() {
    std::string lines;
    lines.swap(lines_);
    return lines;
  }

 private:
  base::LogSink previous_;
  std::string lines_;
};

template <typename Read>
std::string Outcome(Read&& read) {
  try {
    return read();
  } catch (const std::runtime_error& e) {
    return std::string("runtime_error: ") + e.what();
  }
}

// Reads `text` both ways, as a value and as an object, and describes each
// outcome (result, written value or exception, log lines, state after).
void ExpectReadsAlike(const std::string& text, LogCollector& logs) {
  JsonValue quick(7);
  const std::string quickValue = Outcome([&] {
    return json::ReadJsonValue(text, quick) ? "true " + quick.ToJsonString() : std::string("false");
  });
  const std::string quickValueState =
      quickValue + " type " + std::to_string(quick.GetType()) + " | " + logs.Take();
  JsonValue general(7);
  const std::string generalValue = Outcome([&] {
    return json::ReadJsonValueGeneral(text, general) ? "true " + general.ToJsonString()
                                                     : std::string("false");
  });
  const std::string generalValueState =
      generalValue + " type " + std::to_string(general.GetType()) + " | " + logs.Take();
  ASSERT_EQ(quickValueState, generalValueState) << "value text: " << text;

  JsonObject quickObject;
  quickObject.SetProperty("kept", JsonValue(1));
  const std::string quickResult = Outcome(
      [&] { return json::ReadJsonObject(text, quickObject) ? "true" : std::string("false"); });
  const std::string quickObjectState =
      quickResult + " " + quickObject.ToJsonString() + " | " + logs.Take();
  JsonObject generalObject;
  generalObject.SetProperty("kept", JsonValue(1));
  const std::string generalResult = Outcome([&] {
    return json::ReadJsonObjectGeneral(text, generalObject) ? "true" : std::string("false");
  });
  const std::string generalObjectState =
      generalResult + " " + generalObject.ToJsonString() + " | " + logs.Take();
  ASSERT_EQ(quickObjectState, generalObjectState) << "object text: " << text;
}

TEST(JsonTextFastPathsTest, TextsAtTheEdgesOfTheOnePassReadingReadAlike) {
  LogCollector logs;
  const char* const texts[] = {
      // Numbers the one-pass reading declines or must read exactly.
      "[1e5]",
      "[1E5]",
      "[1.5e3]",
      "[+7]",
      "[1.]",
      "[.5]",
      "[-]",
      "[-.5]",
      "[01]",
      "[-0]",
      "[-0.0]",
      "[2147483647]",
      "[2147483648]",
      "[-2147483648]",
      "[-2147483649]",
      "[99999999999]",
      "[1.2.3]",
      "[1-2]",
      "[0x10]",
      "[1 2]",
      "[1,2 3]",
      "1e5",
      "+7",
      "1.",
      "-0",
      "42 ",
      " 42\n",
      "42 x",
      "4.5",
      "[1.7976931348623157e308]",
      "[0.00000000000000000000000000000000000000000000000000000000000000000000000000001]",
      // Words.
      "true",
      "false",
      "null",
      "nul",
      "nullx",
      "[nul]",
      "[truex]",
      "[true false]",
      "[null,]",
      "tru",
      "[fals]",
      "true ",
      "{\"a\": nu}",
      // Strings and escapes.
      "\"a\\u0041\"",
      "[\"a\\x\"]",
      "\"a\\x\"",
      "[\"abc",
      "\"abc",
      "\"ab\"cd",
      "[\"ab\"cd]",
      "[\"a\\\\\"]",
      "[\"a\\\\\\\"\"]",
      "\"\\",
      "[\"\\\"]",
      "[\"\\/\\b\\f\\n\\r\\t\"]",
      "[\"\x01\x7f\xc3\xa9\"]",
      // Arrays.
      "[]",
      "[ ]",
      "[,]",
      "[1,,2]",
      "[1,]",
      "[,1]",
      "[1] trailing",
      "[[[]]]",
      "[[1],[2,[3]]]",
      "[",
      "[1",
      "[1,",
      "[\n1\r\n,\t2\n]",
      "[\v1]",
      "[\f1]",
      "[1\v]",
      "[\0011]",
      "[1}",
      // Objects.
      "{}",
      "{ }",
      "{\"a\":1}",
      "{\"a\" : 1 , \"b\" :2}",
      "{\"\": 1}",
      "{\"a\": 1, \"a\": 2}",
      "{\"a\": 1x, \"a\": 2}",
      "{\"b\": 1, \"a\": 2, \"b\": 3}",
      "{a: 1}",
      "{\"a\" 1}",
      "{\"a\": 1",
      "{\"a\": 1,}",
      "{,\"a\": 1}",
      "{\"a\": }",
      "{\"a\": [1, {\"b\": []}]}",
      "{\"a\": 1} trailing",
      "{\"a\"x: 1}",
      "{\"a\": 1: 2}",
      "{\"a\": 1]",
      "{\"a\\u0041\": 1}",
      "{\"a\\\"b\": 1}",
      "{\"a\": {\"b\": {}}, \"c\": [[]]}",
      "{\"k\": [1, 2}",
      "[{\"a\": 1]}",
      // Other starts.
      "",
      " ",
      "x",
      "\x01",
      "]",
      "}",
      "\"\"",
      "[\"\"]",
  };
  for (const char* text : texts) ExpectReadsAlike(text, logs);
}

TEST(JsonTextFastPathsTest, NestingAtTheDepthLimitReadsAlike) {
  LogCollector logs;
  for (std::size_t depth : {std::size_t{999}, std::size_t{1000}, std::size_t{1001}}) {
    std::string arrays(depth, '[');
    arrays += "1";
    arrays += std::string(depth, ']');
    ExpectReadsAlike(arrays, logs);
    std::string objects;
    for (std::size_t i = 0; i < depth; ++i) objects += "{\"k\": ";
    objects += "1";
    objects += std::string(depth, '}');
    ExpectReadsAlike(objects, logs);
  }
}

// A random standard JSON text: the one-pass reading's own ground, with the
// blanks, escapes and numbers it must read exactly.
std::string RandomStandardJson(std::mt19937& random, int depth) {
  auto blank = [&] {
    static const char* const kBlanks[] = {"", "", "", " ", "\n", "\t", "\r\n  "};
    return std::string(kBlanks[random() % 7]);
  };
  switch (random() % (depth >= 5 ? 7 : 9)) {
    case 0:
      return "null";
    case 1:
      return random() % 2 == 0 ? "true" : "false";
    case 2: {
      const std::int64_t magnitude = static_cast<std::int64_t>(random() % 5000000000ULL);
      return std::to_string(random() % 2 == 0 ? magnitude : -magnitude);
    }
    case 3:
      return std::to_string(static_cast<int>(random() % 20001) - 10000) + "." +
             std::to_string(random() % 1000000);
    case 4: {
      static const char* const kPieces[] = {"a",   "bc",  " ",   "\\\"",    "\\\\",
                                            "\\/", "\\n", "\\t", "\\u00e9", "\xc3\xa9",
                                            ",",   "]",   "}",   ":"};
      std::string text = "\"";
      for (int n = static_cast<int>(random() % 6); n > 0; --n) text += kPieces[random() % 14];
      return text + "\"";
    }
    case 5:
      return "\"key\\u0041\"";
    case 6:
      return "\"\"";
    case 7: {
      std::string text = "[" + blank();
      for (int n = static_cast<int>(random() % 5); n > 0; --n) {
        text += RandomStandardJson(random, depth + 1) + blank() + (n > 1 ? "," + blank() : "");
      }
      return text + "]";
    }
    default: {
      std::string text = "{" + blank();
      for (int n = static_cast<int>(random() % 5); n > 0; --n) {
        static const char* const kNames[] = {"a", "b", "name", "\\u0041", "x y", "a\\\"", ""};
        text += "\"" + std::string(kNames[random() % 7]) + "\"" + blank() + ":" + blank() +
                RandomStandardJson(random, depth + 1) + blank() + (n > 1 ? "," + blank() : "");
      }
      return text + "}";
    }
  }
}

// One random edit, so that texts also fall just outside the one-pass
// reading's ground.
std::string Edited(std::string text, std::mt19937& random) {
  static const std::string kCharacters = "[]{}\",:\\ 1.e-+nx\v\x01";
  if (text.empty()) return text;
  const std::size_t at = random() % text.size();
  const char c = kCharacters[random() % kCharacters.size()];
  switch (random() % 3) {
    case 0:
      text.insert(text.begin() + static_cast<std::ptrdiff_t>(at), c);
      break;
    case 1:
      text.erase(at, 1);
      break;
    default:
      text[at] = c;
      break;
  }
  return text;
}

TEST(JsonTextFastPathsTest, RandomStandardJsonReadsAlike) {
  LogCollector logs;
  std::mt19937 random(21);
  int read = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = RandomStandardJson(random, 0);
    ExpectReadsAlike(text, logs);
    JsonValue value;
    if (Outcome([&] { return json::ReadJsonValue(text, value) ? "true" : std::string(); }) ==
        "true") {
      ++read;
    }
    logs.Take();
  }
  // Most texts are read (those with an empty name or an integer out of range
  // are not).
  EXPECT_GT(read, 10000);
}

TEST(JsonTextFastPathsTest, EditedStandardJsonReadsAlike) {
  LogCollector logs;
  std::mt19937 random(22);
  for (int i = 0; i < 20000; ++i)
    ExpectReadsAlike(Edited(RandomStandardJson(random, 0), random), logs);
}

// ---------------------------------------------------------------------------
// Writing: the writer against a plain one made from the format's rules.

std::string PlainEscaped(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '\b':
        out += "\\b";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\f':
        out += "\\f";
        break;
      case '\r':
        out += "\\r";
        break;
      case '"':
        out += "\\\"";
        break;
      case '/':
        out += "\\/";
        break;
      case '\\':
        out += "\\\\";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string PlainWrite(const JsonValue& value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  switch (value.GetType()) {
    case JsonValue::Null:
      return "null";
    case JsonValue::Integer:
      stream << value.GetAsInt();
      return stream.str();
    case JsonValue::String:
      return "\"" + PlainEscaped(value.GetAsString()) + "\"";
    case JsonValue::Double:
      return StreamWrites(value.GetAsDouble());
    case JsonValue::Boolean:
      return value.GetAsBool() ? "true" : "false";
    case JsonValue::Object: {
      std::string text = "{";
      bool first = true;
      for (const auto& [name, property] : value.GetAsObject().GetAllProperties()) {
        text += (first ? "\"" : ", \"") + name + "\": " + PlainWrite(property);
        first = false;
      }
      return text + "}";
    }
    case JsonValue::Array: {
      std::string text = "[";
      bool first = true;
      for (const JsonValue& element : value.GetAsArray()) {
        text += (first ? "" : ", ") + PlainWrite(element);
        first = false;
      }
      return text + "]";
    }
  }
  return "";
}

JsonValue RandomValue(std::mt19937_64& random, int depth) {
  switch (random() % (depth >= 4 ? 6 : 8)) {
    case 0:
      return JsonValue();
    case 1:
      return JsonValue(static_cast<int>(random()));
    case 2: {
      std::string text;
      for (int n = static_cast<int>(random() % 40); n > 0; --n) {
        text += static_cast<char>(random() % 256);
      }
      return JsonValue(text);
    }
    case 3: {
      const double value = FromBits(random());
      return JsonValue(std::isfinite(value) ? value : 0.25);
    }
    case 4:
      return JsonValue(static_cast<double>(static_cast<int>(random() % 200000) - 100000) / 64.0);
    case 5:
      return JsonValue(random() % 2 == 0);
    case 6: {
      std::vector<JsonValue> elements;
      for (int n = static_cast<int>(random() % 6); n > 0; --n) {
        elements.push_back(RandomValue(random, depth + 1));
      }
      return JsonValue(elements);
    }
    default: {
      JsonObject object;
      for (int n = static_cast<int>(random() % 6); n > 0; --n) {
        object.SetProperty("k" + std::to_string(random() % 8) + std::string(random() % 20, 'x'),
                           RandomValue(random, depth + 1));
      }
      return JsonValue(object);
    }
  }
}

TEST(JsonTextFastPathsTest, TheWriterWritesWhatThePlainRulesWrite) {
  std::mt19937_64 random(23);
  for (int i = 0; i < 5000; ++i) {
    const JsonValue value = RandomValue(random, 0);
    const std::string expected = PlainWrite(value);
    ASSERT_EQ(value.ToJsonString(), expected);
    // Appending keeps what the text held before.
    std::string appended = "prefix:";
    json::AppendJsonValue(appended, value);
    ASSERT_EQ(appended, "prefix:" + expected);
    if (value.GetType() == JsonValue::Object) {
      ASSERT_EQ(value.GetAsObject().ToJsonString(), expected);
    }
  }
}

TEST(JsonTextFastPathsTest, TheWriterWritesLongTextsWhole) {
  // Far beyond the writer's first buffer, with escapes throughout.
  std::string text;
  for (int i = 0; i < 300000; ++i) text += "ab\"/\n"[i % 5];
  std::vector<JsonValue> elements(3, JsonValue(text));
  const JsonValue value(elements);
  EXPECT_EQ(value.ToJsonString(), PlainWrite(value));
}

}  // namespace
