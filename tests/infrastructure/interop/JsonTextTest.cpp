#include "wevlin/infrastructure/interop/internal/JsonText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"

namespace {

namespace json = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal;
using wevlin_test::StdoutCapture;
using wevlin_test::Thrown;

// The reference for the number readers: extraction from a string stream in
// the classic locale that consumes the whole text and fails nowhere.
template <typename T>
bool StreamReads(const std::string& text, T& value) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  stream >> value;
  return !stream.fail() && !stream.bad() && stream.eof();
}

template <typename T>
std::string StreamWrites(T value, int precision) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(precision);
  stream << value;
  return stream.str();
}

std::string Bits(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return std::to_string(bits);
}

std::string Bits(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return std::to_string(bits);
}

// A numeric punctuation that a user's locale might set: decimal comma and
// digit grouping.
class CommaNumpunct : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// Restores the global C++ locale when it goes out of scope.
class GlobalLocaleScope {
 public:
  explicit GlobalLocaleScope(const std::locale& locale) : previous_(std::locale::global(locale)) {}
  ~GlobalLocaleScope() { std::locale::global(previous_); }

 private:
  std::locale previous_;
};

// ---------------------------------------------------------------------------
// TrimJsonText

TEST(JsonTextTest, TrimRemovesWhiteSpaceAndControlBytesFromBothEnds) {
  EXPECT_EQ(json::TrimJsonText(" \t\r\n\v\f x y \x01\x1f\x7f"), "x y");
  EXPECT_EQ(json::TrimJsonText(std::string("\0\0a\0", 4)), "a");
  EXPECT_EQ(json::TrimJsonText("   "), "");
  EXPECT_EQ(json::TrimJsonText(""), "");
  EXPECT_EQ(json::TrimJsonText("a \n b"), "a \n b");
}

TEST(JsonTextTest, TrimKeepsBytesFrom128Up) {
  EXPECT_EQ(json::TrimJsonText("\x80x\xff"), "\x80x\xff");
  EXPECT_EQ(json::TrimJsonText(" \xa0 "), "\xa0");
  EXPECT_EQ(json::TrimJsonText("~"), "~");
}

TEST(JsonTextTest, TrimViewMatchesTrimForEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text =
        std::string(1, static_cast<char>(byte)) + "a" + std::string(1, static_cast<char>(byte));
    EXPECT_EQ(json::TrimJsonText(text), std::string(json::TrimJsonTextView(text))) << byte;
    const bool trimmed = byte <= 32 || byte == 127;
    EXPECT_EQ(json::TrimJsonText(text), trimmed ? "a" : text) << byte;
  }
}

// ---------------------------------------------------------------------------
// Escaping and quoting

TEST(JsonTextTest, EscapeWritesTheEightTwoCharacterEscapes) {
  EXPECT_EQ(json::EscapeJsonString("\b"), "\\b");
  EXPECT_EQ(json::EscapeJsonString("\t"), "\\t");
  EXPECT_EQ(json::EscapeJsonString("\n"), "\\n");
  EXPECT_EQ(json::EscapeJsonString("\f"), "\\f");
  EXPECT_EQ(json::EscapeJsonString("\r"), "\\r");
  EXPECT_EQ(json::EscapeJsonString("\""), "\\\"");
  EXPECT_EQ(json::EscapeJsonString("/"), "\\/");
  EXPECT_EQ(json::EscapeJsonString("\\"), "\\\\");
  EXPECT_EQ(json::EscapeJsonString("a\tb/c"), "a\\tb\\/c");
}

TEST(JsonTextTest, EscapeCopiesEveryOtherByteUnchanged) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if (c == '\b' || c == '\t' || c == '\n' || c == '\f' || c == '\r' || c == '"' || c == '/' ||
        c == '\\') {
      continue;
    }
    EXPECT_EQ(json::EscapeJsonString(std::string(1, c)), std::string(1, c)) << byte;
  }
  EXPECT_EQ(json::EscapeJsonString(std::string("a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(json::EscapeJsonString("\x01\x0b\x1f\x7f\x80\xc3\xa9\xff"),
            "\x01\x0b\x1f\x7f\x80\xc3\xa9\xff");
  EXPECT_EQ(json::EscapeJsonString(""), "");
}

TEST(JsonTextTest, FormatJsonStringQuotesTheEscapedText) {
  EXPECT_EQ(json::FormatJsonString("\t/"), "\"\\t\\/\"");
  EXPECT_EQ(json::FormatJsonString(""), "\"\"");
  EXPECT_EQ(json::FormatJsonString("say \"hi\"\\"), "\"say \\\"hi\\\"\\\\\"");
  EXPECT_EQ(json::FormatJsonString("\x01"), "\"\x01\"");
  std::string appended = "x:";
  json::AppendJsonString(appended, "a\nb");
  EXPECT_EQ(appended, "x:\"a\\nb\"");
}

// ---------------------------------------------------------------------------
// Formatting numbers

TEST(JsonTextTest, FormatIntWritesPlainDecimal) {
  EXPECT_EQ(json::FormatInt(-12), "-12");
  EXPECT_EQ(json::FormatInt(0), "0");
  EXPECT_EQ(json::FormatInt(42), "42");
  EXPECT_EQ(json::FormatInt(std::numeric_limits<int>::max()), "2147483647");
  EXPECT_EQ(json::FormatInt(std::numeric_limits<int>::min()), "-2147483648");
  EXPECT_EQ(json::FormatInt(1234567), "1234567");
}

TEST(JsonTextTest, FormatDoubleWritesSeventeenSignificantDigits) {
  EXPECT_EQ(json::FormatDouble(0.1), "0.10000000000000001");
  EXPECT_EQ(json::FormatDouble(2.0), "2");
  EXPECT_EQ(json::FormatDouble(1e20), "1e+20");
  EXPECT_EQ(json::FormatDouble(-0.0), "-0");
  EXPECT_EQ(json::FormatDouble(0.0), "0");
  EXPECT_EQ(json::FormatDouble(1e-300), "1e-300");
  EXPECT_EQ(json::FormatDouble(1e-5), "1.0000000000000001e-05");
  EXPECT_EQ(json::FormatDouble(1.7976931348623157e308), "1.7976931348623157e+308");
  EXPECT_EQ(json::FormatDouble(4.9406564584124654e-324), "4.9406564584124654e-324");
  EXPECT_EQ(json::FormatDouble(2.2250738585072014e-308), "2.2250738585072014e-308");
  EXPECT_EQ(json::FormatDouble(123456789012345678.0), "1.2345678901234568e+17");
  EXPECT_EQ(json::FormatDouble(1e16), "10000000000000000");
  EXPECT_EQ(json::FormatDouble(1e17), "1e+17");
  EXPECT_EQ(json::FormatDouble(0.5), "0.5");
  EXPECT_EQ(json::FormatDouble(-1.5), "-1.5");
  EXPECT_EQ(json::FormatDouble(100.0), "100");
  EXPECT_EQ(json::FormatDouble(1.0 / 3.0), "0.33333333333333331");
  EXPECT_EQ(json::FormatDouble(123.456), "123.456");
}

TEST(JsonTextTest, FormatFloatWritesSixSignificantDigits) {
  EXPECT_EQ(json::FormatFloat(0.1f), "0.1");
  EXPECT_EQ(json::FormatFloat(1.0f), "1");
  EXPECT_EQ(json::FormatFloat(1e20f), "1e+20");
  EXPECT_EQ(json::FormatFloat(-0.0f), "-0");
  EXPECT_EQ(json::FormatFloat(123456789.0f), "1.23457e+08");
  EXPECT_EQ(json::FormatFloat(1e-5f), "1e-05");
  EXPECT_EQ(json::FormatFloat(0.0001f), "0.0001");
  EXPECT_EQ(json::FormatFloat(std::numeric_limits<float>::max()), "3.40282e+38");
  EXPECT_EQ(json::FormatFloat(std::numeric_limits<float>::min()), "1.17549e-38");
  EXPECT_EQ(json::FormatFloat(std::numeric_limits<float>::denorm_min()), "1.4013e-45");
  EXPECT_EQ(json::FormatFloat(2.5f), "2.5");
  EXPECT_EQ(json::FormatFloat(1234567.0f), "1.23457e+06");
  EXPECT_EQ(json::FormatFloat(100000.0f), "100000");
  EXPECT_EQ(json::FormatFloat(1000000.0f), "1e+06");
}

TEST(JsonTextTest, FormatBoolWritesTheWords) {
  EXPECT_EQ(json::FormatBool(true), "true");
  EXPECT_EQ(json::FormatBool(false), "false");
}

TEST(JsonTextTest, NonFiniteNumbersAreWrittenAsTheStreamWritesThem) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(json::FormatDouble(infinity), StreamWrites(infinity, 17));
  EXPECT_EQ(json::FormatDouble(-infinity), StreamWrites(-infinity, 17));
  EXPECT_EQ(json::FormatDouble(nan), StreamWrites(nan, 17));
  EXPECT_EQ(json::FormatDouble(-nan), StreamWrites(-nan, 17));
  EXPECT_EQ(json::FormatFloat(std::numeric_limits<float>::infinity()),
            StreamWrites(std::numeric_limits<float>::infinity(), 6));
  EXPECT_EQ(json::FormatDouble(infinity), "inf");
}

TEST(JsonTextTest, FormatDoubleAndFloatMatchTheStreamForRandomValues) {
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isnan(value)) continue;
    ASSERT_EQ(json::FormatDouble(value), StreamWrites(value, 17)) << Bits(value);
    const auto bits32 = static_cast<std::uint32_t>(bits >> 32);
    float single = 0.0f;
    std::memcpy(&single, &bits32, sizeof single);
    if (std::isnan(single)) continue;
    ASSERT_EQ(json::FormatFloat(single), StreamWrites(single, 6)) << Bits(single);
  }
  std::uniform_real_distribution<double> ordinary(-1e6, 1e6);
  for (int i = 0; i < 20000; ++i) {
    const double value = ordinary(random);
    ASSERT_EQ(json::FormatDouble(value), StreamWrites(value, 17)) << Bits(value);
    const auto single = static_cast<float>(value);
    ASSERT_EQ(json::FormatFloat(single), StreamWrites(single, 6)) << Bits(single);
    const auto integer = static_cast<int>(value);
    ASSERT_EQ(json::FormatInt(integer), StreamWrites(integer, 6));
  }
}

// ---------------------------------------------------------------------------
// ReadJsonString

TEST(JsonTextTest, ReadStringDecodesTheEscapes) {
  std::string out;
  EXPECT_TRUE(json::ReadJsonString("\"a\\\"b\\/c\\\\d\\be\\ff\\ng\\rh\\ti\"", out));
  EXPECT_EQ(out, "a\"b/c\\d\be\ff\ng\rh\ti");
  EXPECT_TRUE(json::ReadJsonString("\"\"", out));
  EXPECT_EQ(out, "");
  EXPECT_TRUE(json::ReadJsonString("  \"x y\" \n", out));
  EXPECT_EQ(out, "x y");
}

TEST(JsonTextTest, ReadStringDropsTheUAndKeepsTheDigits) {
  std::string out;
  EXPECT_TRUE(json::ReadJsonString("\"a\\u0041\"", out));
  EXPECT_EQ(out, "a0041");
  EXPECT_TRUE(json::ReadJsonString("\"\\u\"", out));
  EXPECT_EQ(out, "");
  EXPECT_TRUE(json::ReadJsonString("\"\\u00\\\"x\"", out));
  EXPECT_EQ(out, "00\"x");
  EXPECT_TRUE(json::ReadJsonString("\"\\uzz\"", out));
  EXPECT_EQ(out, "zz");
}

TEST(JsonTextTest, ReadStringStopsAtTheClosingQuote) {
  std::string out;
  EXPECT_TRUE(json::ReadJsonString("\"ab\"cd", out));
  EXPECT_EQ(out, "ab");
  EXPECT_TRUE(json::ReadJsonString("\"x\" \"y\"", out));
  EXPECT_EQ(out, "x");
  EXPECT_TRUE(json::ReadJsonString("\"a\\\\\"b\\\"", out));
  EXPECT_EQ(out, "a\\");
}

TEST(JsonTextTest, ReadStringKeepsRawBytes) {
  std::string out;
  EXPECT_TRUE(json::ReadJsonString("\"\x01\x80\xc3\xa9\xff\t\"", out));
  EXPECT_EQ(out, "\x01\x80\xc3\xa9\xff\t");
  EXPECT_TRUE(json::ReadJsonString(std::string("\"a\0b\"", 5), out));
  EXPECT_EQ(out, std::string("a\0b", 3));
}

TEST(JsonTextTest, ReadStringFailures) {
  std::string out = "previous";
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(out, "");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("   ", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("abc", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("5", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"abc", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(out, "abc");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"ab\\", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"ab\\\"", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"a\\x\"", out); }),
            "runtime_error: Invalid escape character");
  EXPECT_EQ(out, "a");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"\\U0041\"", out); }),
            "runtime_error: Invalid escape character");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"\\'\"", out); }),
            "runtime_error: Invalid escape character");
  EXPECT_EQ(Thrown([&] { json::ReadJsonString("\"\\0\"", out); }),
            "runtime_error: Invalid escape character");
}

TEST(JsonTextTest, ReadStringViewMatchesReadString) {
  std::string fromString;
  std::string fromView;
  ASSERT_TRUE(json::ReadJsonString(" \"a\\tb\" ", fromString));
  ASSERT_TRUE(json::ReadJsonStringView(std::string_view(" \"a\\tb\" "), fromView));
  EXPECT_EQ(fromString, fromView);
}

// ---------------------------------------------------------------------------
// ReadJsonBool

TEST(JsonTextTest, ReadBoolAcceptsExactlyTrueAndFalse) {
  bool out = false;
  EXPECT_TRUE(json::ReadJsonBool("true", out));
  EXPECT_TRUE(out);
  EXPECT_TRUE(json::ReadJsonBool(" false\n", out));
  EXPECT_FALSE(out);
  out = true;
  for (const char* text : {"", "True", "TRUE", "tru", "truex", "t", "f", "fals", "1", "0",
                           "\"true\"", "true false", "nul"}) {
    EXPECT_EQ(Thrown([&] { json::ReadJsonBool(text, out); }),
              "runtime_error: JSON data is not a boolean")
        << text;
  }
  EXPECT_TRUE(out);
}

// ---------------------------------------------------------------------------
// ReadJsonInt / ReadJsonFloat / ReadJsonDouble

TEST(JsonTextTest, ReadIntEdges) {
  int out = 0;
  EXPECT_TRUE(json::ReadJsonInt("+7", out));
  EXPECT_EQ(out, 7);
  EXPECT_TRUE(json::ReadJsonInt("-0", out));
  EXPECT_EQ(out, 0);
  EXPECT_TRUE(json::ReadJsonInt(" 7", out));
  EXPECT_EQ(out, 7);
  EXPECT_TRUE(json::ReadJsonInt("  42\n", out));
  EXPECT_EQ(out, 42);
  EXPECT_TRUE(json::ReadJsonInt("007", out));
  EXPECT_EQ(out, 7);
  EXPECT_TRUE(json::ReadJsonInt("2147483647", out));
  EXPECT_EQ(out, 2147483647);
  EXPECT_TRUE(json::ReadJsonInt("-2147483648", out));
  EXPECT_EQ(out, std::numeric_limits<int>::min());
  EXPECT_TRUE(json::ReadJsonInt("0000000000000000000000000042", out));
  EXPECT_EQ(out, 42);
  EXPECT_TRUE(json::ReadJsonInt("-000000000000000000002147483648", out));
  EXPECT_EQ(out, std::numeric_limits<int>::min());
  out = 99;
  for (const char* text : {"7x",
                           "0x10",
                           "2147483648",
                           "-2147483649",
                           "99999999999999999999",
                           "-99999999999999999999",
                           "",
                           "+",
                           "-",
                           "+-1",
                           "--1",
                           "1e5",
                           "1.5",
                           "1 2",
                           "x",
                           "\"5\"",
                           "true",
                           "null",
                           "1,000",
                           "١"}) {
    EXPECT_EQ(Thrown([&] { json::ReadJsonInt(text, out); }),
              "runtime_error: JSON data is not an integer")
        << text;
  }
  EXPECT_EQ(out, 99);
}

TEST(JsonTextTest, ReadDoubleEdges) {
  double out = 0.0;
  EXPECT_TRUE(json::ReadJsonDouble("1e5", out));
  EXPECT_EQ(out, 100000.0);
  EXPECT_TRUE(json::ReadJsonDouble("4.5", out));
  EXPECT_EQ(out, 4.5);
  EXPECT_TRUE(json::ReadJsonDouble(".5", out));
  EXPECT_EQ(out, 0.5);
  EXPECT_TRUE(json::ReadJsonDouble("5.", out));
  EXPECT_EQ(out, 5.0);
  EXPECT_TRUE(json::ReadJsonDouble("-.5", out));
  EXPECT_EQ(out, -0.5);
  EXPECT_TRUE(json::ReadJsonDouble("+.5", out));
  EXPECT_EQ(out, 0.5);
  EXPECT_TRUE(json::ReadJsonDouble("-0", out));
  EXPECT_TRUE(std::signbit(out));
  EXPECT_TRUE(json::ReadJsonDouble("7", out));
  EXPECT_EQ(out, 7.0);
  EXPECT_TRUE(json::ReadJsonDouble("1.5e3", out));
  EXPECT_EQ(out, 1500.0);
  EXPECT_TRUE(json::ReadJsonDouble("0.10000000000000001", out));
  EXPECT_EQ(out, 0.1);
  EXPECT_TRUE(json::ReadJsonDouble("1.7976931348623157e308", out));
  EXPECT_EQ(out, std::numeric_limits<double>::max());
  out = 3.0;
  for (const char* text :
       {"1e400", "-1e400", "inf",   "-inf", "nan", "infinity", ".",   "-",  "+",       "",
        "1.2.3", "0x10",   "0x1p3", "1e",   "1e+", "7x",       "1 2", "e5", "\"1.5\"", "1,5"}) {
    EXPECT_EQ(Thrown([&] { json::ReadJsonDouble(text, out); }),
              "runtime_error: JSON data is not a double")
        << text;
  }
  EXPECT_EQ(out, 3.0);
}

TEST(JsonTextTest, ReadFloatEdges) {
  float out = 0.0f;
  EXPECT_TRUE(json::ReadJsonFloat("0.1", out));
  EXPECT_EQ(out, 0.1f);
  EXPECT_TRUE(json::ReadJsonFloat("3.4e38", out));
  EXPECT_EQ(out, 3.4e38f);
  EXPECT_TRUE(json::ReadJsonFloat("+7", out));
  EXPECT_EQ(out, 7.0f);
  EXPECT_TRUE(json::ReadJsonFloat("16777217", out));
  EXPECT_EQ(out, 16777216.0f);
  out = 2.0f;
  for (const char* text :
       {"3.5e38", "1e39", "-1e39", "inf", "nan", ".", "", "0x10", "7x", "1e5e"}) {
    EXPECT_EQ(Thrown([&] { json::ReadJsonFloat(text, out); }),
              "runtime_error: JSON data is not a float")
        << text;
  }
  EXPECT_EQ(out, 2.0f);
}

// Every case of the number readers is compared with the stream: accepted or
// not, and the exact bits of the value.
void ExpectNumberReadersMatchStream(const std::string& text) {
  {
    int expected = 0;
    const bool accepted = StreamReads(text, expected);
    int actual = 0;
    const std::string thrown = Thrown([&] { json::ReadJsonInt(text, actual); });
    ASSERT_EQ(thrown, accepted ? "none" : "runtime_error: JSON data is not an integer") << text;
    if (accepted) {
      ASSERT_EQ(actual, expected) << text;
    }
  }
  {
    float expected = 0.0f;
    const bool accepted = StreamReads(text, expected);
    float actual = 0.0f;
    const std::string thrown = Thrown([&] { json::ReadJsonFloat(text, actual); });
    ASSERT_EQ(thrown, accepted ? "none" : "runtime_error: JSON data is not a float") << text;
    if (accepted) {
      ASSERT_EQ(Bits(actual), Bits(expected)) << text;
    }
  }
  {
    double expected = 0.0;
    const bool accepted = StreamReads(text, expected);
    double actual = 0.0;
    const std::string thrown = Thrown([&] { json::ReadJsonDouble(text, actual); });
    ASSERT_EQ(thrown, accepted ? "none" : "runtime_error: JSON data is not a double") << text;
    if (accepted) {
      ASSERT_EQ(Bits(actual), Bits(expected)) << text;
    }
  }
}

TEST(JsonTextTest, NumberReadersMatchTheStreamOnListedEdges) {
  for (const char* text : {"+7",
                           "-0",
                           "7x",
                           "0x10",
                           "2147483647",
                           "2147483648",
                           "-2147483648",
                           "-2147483649",
                           "7",
                           "1e5",
                           "1e400",
                           "1e-400",
                           "1e-320",
                           "inf",
                           "nan",
                           ".5",
                           "5.",
                           "-.5",
                           "+.5",
                           ".",
                           "+",
                           "-",
                           "",
                           "0",
                           "00",
                           "-00.00",
                           "1e-50",
                           "1e-46",
                           "1e-45",
                           "3.4028235e38",
                           "3.4028236e38",
                           "340282356779733661637539395458142568448",
                           "1.17549435e-38",
                           "0.000001",
                           "123456789",
                           "4294967296",
                           "9223372036854775807",
                           "9223372036854775808",
                           "-9223372036854775809",
                           "1E5",
                           "1e+5",
                           "1e-5",
                           "5e",
                           "1.5e",
                           "1.e5",
                           ".e5",
                           "1..5",
                           "--5",
                           "+-5",
                           "5-",
                           "5+",
                           "1 ",
                           "1\t2"}) {
    ExpectNumberReadersMatchStream(json::TrimJsonText(text));
  }
}

TEST(JsonTextTest, NumberReadersMatchTheStreamOnLongDigitRuns) {
  // Around the lengths where the readers stop trusting their fast path.
  for (std::size_t length = 1; length < 320; ++length) {
    const std::string ones(length, '1');
    ExpectNumberReadersMatchStream(ones);
    ExpectNumberReadersMatchStream("-" + ones);
    ExpectNumberReadersMatchStream("0." + std::string(length, '0') + "1");
    ExpectNumberReadersMatchStream("9" + std::string(length, '9') + ".5");
    ExpectNumberReadersMatchStream("+" + std::string(length, '0') + ".");
  }
}

TEST(JsonTextTest, NumberReadersMatchTheStreamOnRandomTexts) {
  std::mt19937 random(77);
  const std::string alphabet = "0123456789+-.eExXainfp ";
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
  std::uniform_int_distribution<int> length(0, 9);
  std::uniform_int_distribution<int> digitsOnly(0, 2);
  for (int i = 0; i < 30000; ++i) {
    std::string text;
    const int n = length(random);
    const bool plain = digitsOnly(random) == 0;
    for (int j = 0; j < n; ++j) {
      text += plain ? alphabet[pick(random) % 13] : alphabet[pick(random)];
    }
    ExpectNumberReadersMatchStream(json::TrimJsonText(text));
  }
}

TEST(JsonTextTest, NumberReadingIgnoresTheGlobalLocale) {
  GlobalLocaleScope scope(std::locale(std::locale::classic(), new CommaNumpunct()));
  double number = 0.0;
  EXPECT_TRUE(json::ReadJsonDouble("1.5", number));
  EXPECT_EQ(number, 1.5);
  EXPECT_TRUE(json::ReadJsonDouble("1.5e3", number));
  EXPECT_EQ(number, 1500.0);
  EXPECT_EQ(Thrown([&] { json::ReadJsonDouble("1,5", number); }),
            "runtime_error: JSON data is not a double");
  int integer = 0;
  EXPECT_EQ(Thrown([&] { json::ReadJsonInt("1.000", integer); }),
            "runtime_error: JSON data is not an integer");
  EXPECT_TRUE(json::ReadJsonInt("1000", integer));
  EXPECT_EQ(integer, 1000);
  float single = 0.0f;
  EXPECT_TRUE(json::ReadJsonFloat("2.5e1", single));
  EXPECT_EQ(single, 25.0f);
}

TEST(JsonTextTest, NumberFormattingIgnoresTheGlobalLocale) {
  GlobalLocaleScope scope(std::locale(std::locale::classic(), new CommaNumpunct()));
  EXPECT_EQ(json::FormatDouble(1234567.5), "1234567.5");
  EXPECT_EQ(json::FormatFloat(1234.5f), "1234.5");
  EXPECT_EQ(json::FormatInt(1234567), "1234567");
  EXPECT_EQ(json::FormatDouble(0.1), "0.10000000000000001");
}

// ---------------------------------------------------------------------------
// ParseArray

std::vector<std::string> Cut(const std::string& text) {
  std::vector<std::string> out;
  EXPECT_TRUE(json::ParseArray(text, out)) << text;
  return out;
}

using Texts = std::vector<std::string>;

TEST(JsonTextTest, ParseArrayCutsRawElementTexts) {
  EXPECT_EQ(Cut("[1, \"x\", [2,3], {\"k\": true}]"),
            (Texts{"1", "\"x\"", "[2,3]", "{\"k\": true}"}));
  EXPECT_EQ(Cut("[ 1 , 2 ]"), (Texts{"1 ", "2 "}));
  EXPECT_EQ(Cut("[\"a]b\", \"c,d\", \"e\\\"]\"]"), (Texts{"\"a]b\"", "\"c,d\"", "\"e\\\"]\""}));
  EXPECT_EQ(Cut("[[1, [2]], {\"a\": [\"]\"]}]"), (Texts{"[1, [2]]", "{\"a\": [\"]\"]}"}));
  EXPECT_EQ(Cut("[x[1] y, \"a\"b]"), (Texts{"x[1] y", "\"a\"b"}));
  EXPECT_EQ(Cut("[\x01 1]"), (Texts{"\x01 1"}));
  EXPECT_EQ(Cut("[}]"), (Texts{"}"}));
  EXPECT_EQ(Cut("[{]}]"), (Texts{"{]}"}));
}

TEST(JsonTextTest, ParseArrayDropsEmptyElementsAndIgnoresTrailingText) {
  EXPECT_EQ(Cut("[1,,2]"), (Texts{"1", "2"}));
  EXPECT_EQ(Cut("[,1]"), (Texts{"1"}));
  EXPECT_EQ(Cut("[1,]"), (Texts{"1"}));
  EXPECT_EQ(Cut("[,]"), Texts{});
  EXPECT_EQ(Cut("[]"), Texts{});
  EXPECT_EQ(Cut("[ ]"), Texts{});
  EXPECT_EQ(Cut("[1] trailing"), (Texts{"1"}));
  EXPECT_EQ(Cut("  [1]]]\n"), (Texts{"1"}));
  EXPECT_EQ(Cut("[1] \"unterminated"), (Texts{"1"}));
}

TEST(JsonTextTest, ParseArrayThrowsWhenNotAnArray) {
  std::vector<std::string> out = {"previous"};
  for (const char* text : {"", "   ", "x", "{}", "1", "\"[1]\"", "[", "  [  ", "[1, 2",
                           "[\"x\", [1, 2]", "[[1], {\"a\": 1}", "[1, \"]\""}) {
    EXPECT_EQ(Thrown([&] { json::ParseArray(text, out); }),
              "runtime_error: JSON data is not an array")
        << text;
  }
  out = {"previous"};
  EXPECT_EQ(Thrown([&] { json::ParseArray("x", out); }),
            "runtime_error: JSON data is not an array");
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(Thrown([&] { json::ParseArray("[1, 2,", out); }),
            "runtime_error: JSON data is not an array");
  EXPECT_EQ(out, (Texts{"1", "2"}));
}

TEST(JsonTextTest, ParseArrayReturnsFalseForUnterminatedStrings) {
  std::vector<std::string> out;
  StdoutCapture capture;
  EXPECT_FALSE(json::ParseArray("[\"abc", out));
  EXPECT_FALSE(json::ParseArray("[\"abc\\\"]", out));
  EXPECT_FALSE(json::ParseArray("[\"ab\\", out));
  EXPECT_FALSE(json::ParseArray("[1, 2, \"x", out));
  EXPECT_EQ(out, (Texts{"1", "2"}));
  EXPECT_EQ(capture.Text(), "");
}

TEST(JsonTextTest, ParseArrayReturnsFalseForUnclosedNestedStructures) {
  std::vector<std::string> out;
  {
    StdoutCapture capture;
    EXPECT_FALSE(json::ParseArray("[[1, 2", out));
    EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
  }
  {
    StdoutCapture capture;
    EXPECT_FALSE(json::ParseArray("[{\"a\": 1", out));
    EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
  }
  {
    StdoutCapture capture;
    EXPECT_FALSE(json::ParseArray("[[{]", out));
    EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
  }
  {
    StdoutCapture capture;
    EXPECT_FALSE(json::ParseArray("[[\"]", out));
    EXPECT_EQ(capture.Text(), "");
  }
}

TEST(JsonTextTest, ParseArrayViewMatchesParseArray) {
  const std::string text = " [1 , \"a,b\", [2], {}, ,x] tail";
  std::vector<std::string> strings;
  std::vector<std::string_view> views;
  ASSERT_TRUE(json::ParseArray(text, strings));
  ASSERT_TRUE(json::ParseArrayView(text, views));
  ASSERT_EQ(strings.size(), views.size());
  for (std::size_t i = 0; i < strings.size(); ++i) EXPECT_EQ(strings[i], views[i]);
  EXPECT_EQ(strings, (Texts{"1 ", "\"a,b\"", "[2]", "{}", "x"}));
  EXPECT_EQ(Thrown([&] { json::ParseArrayView("{", views); }),
            "runtime_error: JSON data is not an array");
}

// ---------------------------------------------------------------------------
// ParseObject

using RawMap = std::map<std::string, std::string>;

RawMap CutObject(const std::string& text) {
  RawMap out;
  EXPECT_TRUE(json::ParseObject(text, out)) << text;
  return out;
}

TEST(JsonTextTest, ParseObjectCutsRawValueTexts) {
  EXPECT_EQ(CutObject("{\"a\": 1}"), (RawMap{{"a", "1"}}));
  EXPECT_EQ(CutObject("{}"), RawMap{});
  EXPECT_EQ(CutObject(" { } "), RawMap{});
  EXPECT_EQ(CutObject("{\"a\" : 1 , \"b\":[1, {\"c\": 2}]}"),
            (RawMap{{"a", "1 "}, {"b", "[1, {\"c\": 2}]"}}));
  EXPECT_EQ(CutObject("{\"a\": \"x,}y\", \"b\": {\"c\": \"}\"} }"),
            (RawMap{{"a", "\"x,}y\""}, {"b", "{\"c\": \"}\"} "}}));
  EXPECT_EQ(CutObject("{\"a\": 5 }"), (RawMap{{"a", "5 "}}));
  EXPECT_EQ(CutObject("{\"a\": 1, }"), (RawMap{{"a", "1"}}));
  EXPECT_EQ(CutObject("{\"a\": 1}} x"), (RawMap{{"a", "1"}}));
  EXPECT_EQ(CutObject("{\"a\": nul, \"b\": 1x}"), (RawMap{{"a", "nul"}, {"b", "1x"}}));
}

TEST(JsonTextTest, ParseObjectDecodesNamesAndKeepsTheLastDuplicate) {
  EXPECT_EQ(CutObject("{\"b\": 1, \"a\": 2, \"b\": 3}"), (RawMap{{"a", "2"}, {"b", "3"}}));
  EXPECT_EQ(CutObject("{\"a\\u0041\": 1}"), (RawMap{{"a0041", "1"}}));
  EXPECT_EQ(CutObject("{\"a\\\"b\\tc\": 1}"), (RawMap{{"a\"b\tc", "1"}}));
  EXPECT_EQ(CutObject("{\"a\"x : 1}"), (RawMap{{"a", "1"}}));
  EXPECT_EQ(CutObject("{\"a\": \"b\": 1}"), (RawMap{{"b", "1"}}));
  EXPECT_EQ(CutObject("{\"\x80\": 1, \"z\": 2}"), (RawMap{{"\x80", "1"}, {"z", "2"}}));
}

TEST(JsonTextTest, ParseObjectStructuralFailuresReturnFalse) {
  StdoutCapture capture;
  RawMap out;
  for (const char* text :
       {"{\"a\" 1}", "{: 1}", "{\"a\": 1,, \"b\": 2}", "{, }", "{,}", "{\"a\":}", "{\"a\": ,}",
        "{\"\": 1}", "{\"\": 1, \"b\": 2}", "{[1]: 2}", "{{\"a\": 1}: 2}", "{\"\": [1]}",
        "{\"a\": \"x}", "{\"a", "{\"a\": 1, \"b\"}", "{\"a\": 1, 2}"}) {
    EXPECT_FALSE(json::ParseObject(text, out)) << text;
  }
  EXPECT_EQ(capture.Text(), "");
}

TEST(JsonTextTest, ParseObjectUnclosedNestedStructuresReturnFalseWithTheirLine) {
  RawMap out;
  {
    StdoutCapture capture;
    EXPECT_FALSE(json::ParseObject("{\"a\": [1, 2}", out));
    EXPECT_EQ(capture.Text(), "EndOfArray: final character incorrect\n");
  }
  {
    StdoutCapture capture;
    EXPECT_FALSE(json::ParseObject("{\"a\": {\"b\": 1", out));
    EXPECT_EQ(capture.Text(), "EndOfObject: final character incorrect\n");
  }
}

TEST(JsonTextTest, ParseObjectThrows) {
  RawMap out = {{"kept", "1"}};
  for (const char* text : {"", "  ", "[1]", "x", "1", "\"{}\""}) {
    EXPECT_EQ(Thrown([&] { json::ParseObject(text, out); }),
              "runtime_error: JSON data is not an object")
        << text;
  }
  EXPECT_EQ(out, (RawMap{{"kept", "1"}}));
  for (const char* text : {"{", "{\"a\": 1", "{\"a\": [1]", "{\"a\": 1,"}) {
    EXPECT_EQ(Thrown([&] { json::ParseObject(text, out); }),
              "runtime_error: JSON data is not an object")
        << text;
  }
  EXPECT_EQ(Thrown([&] { json::ParseObject("{a: 1}", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ParseObject("{\"a\": 1 \"b\": 2}", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ParseObject("{\"a\": 1 : 2}", out); }),
            "runtime_error: JSON data is not a string");
  EXPECT_EQ(Thrown([&] { json::ParseObject("{\"a\\x\": 1}", out); }),
            "runtime_error: Invalid escape character");
  EXPECT_EQ(Thrown([&] { json::ParseObject("{\"a\": 1, \"b\": 2", out); }),
            "runtime_error: JSON data is not an object");
  EXPECT_EQ(out, (RawMap{{"a", "1"}}));
}

TEST(JsonTextTest, ParseObjectViewMatchesParseObject) {
  const std::string text = "{\"b\": [1, 2] , \"a\": \"x\", \"b\": 3 }";
  RawMap strings;
  std::vector<json::RawProperty> views;
  ASSERT_TRUE(json::ParseObject(text, strings));
  ASSERT_TRUE(json::ParseObjectView(text, views));
  EXPECT_EQ(strings, (RawMap{{"a", "\"x\""}, {"b", "3 "}}));
  // Every property in the order of the text; the last of a name is the map's.
  ASSERT_EQ(views.size(), 3u);
  EXPECT_EQ(views[0].name, "b");
  EXPECT_EQ(views[0].value, "[1, 2] ");
  EXPECT_EQ(views[1].name, "a");
  EXPECT_EQ(views[1].value, "\"x\"");
  EXPECT_EQ(views[2].name, "b");
  EXPECT_EQ(views[2].value, "3 ");
  RawMap lastOfEachName;
  for (const json::RawProperty& property : views) {
    lastOfEachName[property.name] = std::string(property.value);
  }
  EXPECT_EQ(lastOfEachName, strings);
}

TEST(JsonTextTest, ParseObjectViewFailsAsParseObject) {
  for (const std::string text :
       {"{\"a\" 1}", "{,}", "{\"a\": 1,, \"b\": 2}", "{[1]: 2}", "{\"a\": [1, 2}"}) {
    SCOPED_TRACE(text);
    RawMap strings;
    std::vector<json::RawProperty> views{{"kept", "x"}};
    bool mapResult = true;
    std::string mapLines;
    {
      StdoutCapture capture;
      mapResult = json::ParseObject(text, strings);
      mapLines = capture.Text();
    }
    bool viewResult = true;
    std::string viewLines;
    {
      StdoutCapture capture;
      viewResult = json::ParseObjectView(text, views);
      viewLines = capture.Text();
    }
    EXPECT_EQ(viewLines, mapLines);
    EXPECT_EQ(viewResult, mapResult);
    EXPECT_FALSE(viewResult);
  }
  std::vector<json::RawProperty> views{{"kept", "x"}};
  EXPECT_EQ(Thrown([&] { json::ParseObjectView("[1]", views); }),
            "runtime_error: JSON data is not an object");
  ASSERT_EQ(views.size(), 1u);
  EXPECT_EQ(views[0].name, "kept");
  EXPECT_EQ(Thrown([&] { json::ParseObjectView("{\"a\": 1", views); }),
            "runtime_error: JSON data is not an object");
}

// ---------------------------------------------------------------------------
// EndOfArray / EndOfObject

struct Skip {
  bool result;
  std::size_t consumed;
  std::string printed;
};

Skip SkipArray(const std::string& text) {
  StdoutCapture capture;
  const char* cursor = text.data();
  const bool result = json::EndOfArray(cursor, text.data() + text.size());
  return Skip{result, static_cast<std::size_t>(cursor - text.data()), capture.Text()};
}

Skip SkipObject(const std::string& text) {
  StdoutCapture capture;
  const char* cursor = text.data();
  const bool result = json::EndOfObject(cursor, text.data() + text.size());
  return Skip{result, static_cast<std::size_t>(cursor - text.data()), capture.Text()};
}

TEST(JsonTextTest, EndOfArrayStepsOverOneArray) {
  const std::string text = "[1, [2], {\"a\": \"]\"}, \"[\"] rest";
  Skip skip = SkipArray(text);
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, text.find(" rest"));
  EXPECT_EQ(skip.printed, "");
  skip = SkipArray("[]");
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, 2u);
  skip = SkipArray("[}]x");
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, 3u);
  skip = SkipArray("[\"a\\\"]\"]");
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, 8u);
}

TEST(JsonTextTest, EndOfArrayInitialCharacterIncorrect) {
  for (const char* text : {"x[]", "{}", " []", ""}) {
    const Skip skip = SkipArray(text);
    EXPECT_FALSE(skip.result) << text;
    EXPECT_EQ(skip.consumed, 0u) << text;
    EXPECT_EQ(skip.printed, "EndOfArray: initial character incorrect\n") << text;
  }
}

TEST(JsonTextTest, EndOfArrayFinalCharacterIncorrect) {
  Skip skip = SkipArray("[1, 2");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.consumed, 5u);
  EXPECT_EQ(skip.printed, "EndOfArray: final character incorrect\n");
  skip = SkipArray("[{]}");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfArray: final character incorrect\n");
  skip = SkipArray("[1, {");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfObject: final character incorrect\n");
  skip = SkipArray("[[[");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfArray: final character incorrect\n");
}

TEST(JsonTextTest, EndOfArrayUnterminatedStringFailsSilently) {
  const Skip skip = SkipArray("[\"abc]");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "");
}

TEST(JsonTextTest, EndOfObjectStepsOverOneObject) {
  const std::string text = "{\"a\": [1, \"}\"], \"b\": {}} rest";
  Skip skip = SkipObject(text);
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, text.find(" rest"));
  EXPECT_EQ(skip.printed, "");
  skip = SkipObject("{]}");
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, 3u);
}

TEST(JsonTextTest, EndOfObjectFailures) {
  Skip skip = SkipObject("[]");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.consumed, 0u);
  EXPECT_EQ(skip.printed, "EndOfObject: initial character incorrect\n");
  skip = SkipObject("");
  EXPECT_EQ(skip.printed, "EndOfObject: initial character incorrect\n");
  skip = SkipObject("{\"a\": 1");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfObject: final character incorrect\n");
  skip = SkipObject("{[}");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfArray: final character incorrect\n");
  skip = SkipObject("{\"}");
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "");
}

TEST(JsonTextTest, EndOfArrayHandlesAMillionLevelsWithoutRecursion) {
  const std::string open(1000000, '[');
  Skip skip = SkipArray(open);
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.consumed, open.size());
  EXPECT_EQ(skip.printed, "EndOfArray: final character incorrect\n");

  const std::string balanced = open + std::string(1000000, ']');
  skip = SkipArray(balanced + "x");
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, balanced.size());
  EXPECT_EQ(skip.printed, "");

  std::string mixed;
  for (int i = 0; i < 500000; ++i) mixed += "[{";
  skip = SkipArray(mixed);
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfObject: final character incorrect\n");
  std::string closers;
  for (int i = 0; i < 500000; ++i) closers += "}]";
  skip = SkipArray(mixed + closers);
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, mixed.size() + closers.size());
}

TEST(JsonTextTest, EndOfObjectHandlesAMillionLevelsWithoutRecursion) {
  const std::string open(1000000, '{');
  Skip skip = SkipObject(open);
  EXPECT_FALSE(skip.result);
  EXPECT_EQ(skip.printed, "EndOfObject: final character incorrect\n");
  skip = SkipObject(open + std::string(1000000, '}'));
  EXPECT_TRUE(skip.result);
  EXPECT_EQ(skip.consumed, 2000000u);
}

}  // namespace
