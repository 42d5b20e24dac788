// Compares the JSON reader with a deliberately plain second reader, written
// here straight from the reading rules: it copies every piece of text it cuts
// and recurses for every nested structure, with none of the library's
// shortcuts (string views, recorded nesting, fast number paths). Random and
// mutated texts must give the same result, the same exception text, the same
// written value and the same diagnostic lines from both.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <locale>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;

// ---------------------------------------------------------------------------
// The plain reader.

namespace plain {

std::string* log = nullptr;

void Line(const std::string& line) { *log += line + "\n"; }

[[noreturn]] void Throw(const char* text) { throw std::runtime_error(text); }

bool Space(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::string Trim(const std::string& text) {
  auto trimmed = [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return std::isspace(byte) != 0 || std::iscntrl(byte) != 0;
  };
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && trimmed(text[begin])) ++begin;
  while (end > begin && trimmed(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

bool ReadString(const std::string& text, std::string& out) {
  out.clear();
  const std::string t = Trim(text);
  if (t.empty() || t[0] != '"') Throw("JSON data is not a string");
  for (std::size_t i = 1; i < t.size(); ++i) {
    const char c = t[i];
    if (c == '"') return true;
    if (c != '\\') {
      out += c;
      continue;
    }
    if (i + 1 >= t.size()) Throw("JSON data is not a string");
    const char escaped = t[++i];
    if (escaped == '"' || escaped == '/' || escaped == '\\') {
      out += escaped;
    } else if (escaped == 'b') {
      out += '\b';
    } else if (escaped == 'f') {
      out += '\f';
    } else if (escaped == 'n') {
      out += '\n';
    } else if (escaped == 'r') {
      out += '\r';
    } else if (escaped == 't') {
      out += '\t';
    } else if (escaped != 'u') {
      Throw("Invalid escape character");
    }
  }
  Throw("JSON data is not a string");
}

template <typename T>
void ReadNumber(const std::string& text, T& out, const char* error) {
  std::istringstream stream(Trim(text));
  stream.imbue(std::locale::classic());
  T value{};
  stream >> value;
  if (stream.fail() || stream.bad() || !stream.eof()) Throw(error);
  out = value;
}

// Moves `i` from an opening quote to just past its closing quote.
bool SkipString(const std::string& s, std::size_t& i) {
  for (++i; i < s.size(); ++i) {
    if (s[i] == '\\') {
      ++i;
    } else if (s[i] == '"') {
      ++i;
      return true;
    }
  }
  return false;
}

bool EndOf(const std::string& s, std::size_t& i, char open, char close, const std::string& name) {
  if (i >= s.size() || s[i] != open) {
    Line(name + ": initial character incorrect");
    return false;
  }
  ++i;
  while (i < s.size()) {
    const char c = s[i];
    if (c == close) {
      ++i;
      return true;
    }
    if (c == '"') {
      if (!SkipString(s, i)) return false;
    } else if (c == '[') {
      if (!EndOf(s, i, '[', ']', "EndOfArray")) return false;
    } else if (c == '{') {
      if (!EndOf(s, i, '{', '}', "EndOfObject")) return false;
    } else {
      ++i;
    }
  }
  Line(name + ": final character incorrect");
  return false;
}

bool ParseArray(const std::string& text, std::vector<std::string>& out) {
  out.clear();
  const std::string t = Trim(text);
  if (t.empty() || t[0] != '[' || t.size() == 1) Throw("JSON data is not an array");
  const std::size_t none = std::string::npos;
  std::size_t start = none;
  std::size_t i = 1;
  while (i < t.size()) {
    const char c = t[i];
    if (start == none && !Space(c) && c != ',' && c != ']') start = i;
    if (c == '"') {
      if (!SkipString(t, i)) return false;
    } else if (c == '[') {
      if (!EndOf(t, i, '[', ']', "EndOfArray")) return false;
    } else if (c == '{') {
      if (!EndOf(t, i, '{', '}', "EndOfObject")) return false;
    } else if (c == ',') {
      if (start != none) out.push_back(t.substr(start, i - start));
      start = none;
      ++i;
    } else if (c == ']') {
      if (start != none) out.push_back(t.substr(start, i - start));
      return true;
    } else {
      ++i;
    }
  }
  Throw("JSON data is not an array");
}

bool ParseObject(const std::string& text, std::map<std::string, std::string>& out) {
  const std::string t = Trim(text);
  if (t.empty() || t[0] != '{') Throw("JSON data is not an object");
  out.clear();
  const std::size_t none = std::string::npos;
  std::size_t start = none;
  std::string name;
  std::size_t i = 1;
  while (i < t.size()) {
    const char c = t[i];
    if (start == none && !Space(c) && c != ':' && c != ',' && c != '}') start = i;
    if (c == ':') {
      if (start == none) return false;
      if (!ReadString(t.substr(start, i - start), name)) return false;
      start = none;
      ++i;
    } else if (c == ',') {
      if (start == none || name.empty()) return false;
      out[name] = t.substr(start, i - start);
      name.clear();
      start = none;
      ++i;
    } else if (c == '[' || c == '{') {
      if (name.empty()) return false;
      const bool ok =
          c == '[' ? EndOf(t, i, '[', ']', "EndOfArray") : EndOf(t, i, '{', '}', "EndOfObject");
      if (!ok) return false;
    } else if (c == '"') {
      if (!SkipString(t, i)) return false;
    } else if (c == '}') {
      if (name.empty()) return start == none;
      if (start == none) return false;
      out[name] = t.substr(start, i - start);
      return true;
    } else {
      ++i;
    }
  }
  Throw("JSON data is not an object");
}

// The written form of a value read, built straight away.
bool ReadObject(const std::string& text, std::string& written);

bool ReadValue(const std::string& text, std::string& written) {
  const std::string t = Trim(text);
  const char first = t.empty() ? '\0' : t[0];
  if (first == '"') {
    std::string value;
    ReadString(t, value);
    written = "\"";
    for (const char c : value) {
      static const char kEscapes[] = "\bb\tt\nn\ff\rr\"\"//\\\\";
      const char* found = c == '\0' ? nullptr : std::strchr(kEscapes, c);
      while (found != nullptr && (found - kEscapes) % 2 != 0) found = std::strchr(found + 1, c);
      if (found != nullptr) {
        written += '\\';
        written += found[1];
      } else {
        written += c;
      }
    }
    written += '"';
    return true;
  }
  if (first == '[') {
    std::vector<std::string> parts;
    if (!ParseArray(t, parts)) return false;
    written = "[";
    for (std::size_t i = 0; i < parts.size(); ++i) {
      std::string element;
      if (!ReadValue(parts[i], element)) return false;
      written += (i == 0 ? "" : ", ") + element;
    }
    written += "]";
    return true;
  }
  if (first == 't' || first == 'f') {
    if (t != "true" && t != "false") Throw("JSON data is not a boolean");
    written = t;
    return true;
  }
  if (first == 'n') {
    written = "null";
    return t == "null";
  }
  if (first == '{') return ReadObject(t, written);
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  if (t.find('.') != std::string::npos) {
    double value = 0.0;
    ReadNumber(t, value, "JSON data is not a double");
    stream.precision(17);
    stream << value;
  } else {
    int value = 0;
    ReadNumber(t, value, "JSON data is not an integer");
    stream << value;
  }
  written = stream.str();
  return true;
}

bool ReadObject(const std::string& text, std::string& written) {
  std::map<std::string, std::string> raw;
  if (!ParseObject(text, raw)) return false;
  std::string result = "{";
  bool firstProperty = true;
  for (const auto& [name, value] : raw) {
    std::string element;
    if (!ReadValue(value, element)) return false;
    result += (firstProperty ? "\"" : ", \"") + name + "\": " + element;
    firstProperty = false;
  }
  written = result + "}";
  return true;
}

}  // namespace plain

// ---------------------------------------------------------------------------

// Collects the diagnostic lines of the library while it lives.
class LogCollector {
 public:
  LogCollector() {
    base::SetLogSink([this](const std::string& line) { text_ += line + "\n"; });
  }
  ~LogCollector() { base::SetLogSink(nullptr); }
  std::string Take() { return std::exchange(text_, std::string()); }

 private:
  std::string text_;
};

template <typename Call>
std::string Outcome(Call&& call) {
  try {
    return call();
  } catch (const std::runtime_error& e) {
    return std::string("throws ") + e.what();
  }
}

struct Comparison {
  std::string library;
  std::string reference;
};

Comparison CompareValue(const std::string& text, LogCollector& logs) {
  std::string referenceLog;
  plain::log = &referenceLog;
  const std::string reference = Outcome([&] {
    std::string written;
    return plain::ReadValue(text, written) ? "true " + written : std::string("false");
  });
  interop::JsonValue value(123);
  const std::string library = Outcome([&] {
    return value.FromJsonString(text) ? "true " + value.ToJsonString() : std::string("false");
  });
  std::string libraryState = library + " | " + logs.Take();
  if (library.rfind("true", 0) != 0 && value.GetType() != interop::JsonValue::Null) {
    libraryState += " | not cleared";
  }
  return Comparison{libraryState, reference + " | " + referenceLog};
}

Comparison CompareObject(const std::string& text, LogCollector& logs) {
  std::string referenceLog;
  plain::log = &referenceLog;
  const std::string reference = Outcome([&] {
    const std::string t = plain::Trim(text);
    if (t.empty() || t[0] != '{') plain::Throw("JSON data is not an object");
    std::string written;
    return plain::ReadObject(t, written) ? "true " + written : std::string("false");
  });
  interop::JsonObject object;
  object.SetProperty("kept", interop::JsonValue(1));
  const std::string library = Outcome([&] {
    return object.FromJsonString(text) ? "true " + object.ToJsonString() : std::string("false");
  });
  std::string libraryState = library + " | " + logs.Take();
  if (library.rfind("true", 0) != 0 && object.ToJsonString() != "{\"kept\": 1}") {
    libraryState += " | changed";
  }
  return Comparison{libraryState, reference + " | " + referenceLog};
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string joined;
  for (const std::string& part : parts) joined += "<" + part + ">";
  return joined;
}

std::string Joined(const std::map<std::string, std::string>& parts) {
  std::string joined;
  for (const auto& [name, raw] : parts) joined += "<" + name + "=" + raw + ">";
  return joined;
}

Comparison CompareCutting(const std::string& text, LogCollector& logs) {
  std::string referenceLog;
  plain::log = &referenceLog;
  std::vector<std::string> referenceParts;
  std::map<std::string, std::string> referenceProperties;
  std::string reference = Outcome(
      [&] { return plain::ParseArray(text, referenceParts) ? std::string("true") : "false"; });
  reference += Joined(referenceParts) + " / ";
  reference += Outcome([&] {
    return plain::ParseObject(text, referenceProperties) ? std::string("true") : "false";
  });
  reference += Joined(referenceProperties) + " / ";
  // Both skip over the trimmed text; after a failure past the first character
  // the plain reader stands at (or, after a final backslash, just beyond) the
  // end.
  const std::string trimmed = plain::Trim(text);
  std::size_t i = 0;
  reference += plain::EndOf(trimmed, i, '[', ']', "EndOfArray") ? "true" : "false";
  reference += std::to_string(std::min(i, trimmed.size())) + " ";
  i = 0;
  reference += plain::EndOf(trimmed, i, '{', '}', "EndOfObject") ? "true" : "false";
  reference += std::to_string(std::min(i, trimmed.size()));

  std::vector<std::string> parts;
  std::map<std::string, std::string> properties;
  std::string library = Outcome(
      [&] { return interop::internal::ParseArray(text, parts) ? std::string("true") : "false"; });
  library += Joined(parts) + " / ";
  library += Outcome([&] {
    return interop::internal::ParseObject(text, properties) ? std::string("true") : "false";
  });
  library += Joined(properties) + " / ";
  const char* cursor = trimmed.data();
  const char* end = trimmed.data() + trimmed.size();
  library += interop::internal::EndOfArray(cursor, end) ? "true" : "false";
  library += std::to_string(cursor - trimmed.data()) + " ";
  cursor = trimmed.data();
  library += interop::internal::EndOfObject(cursor, end) ? "true" : "false";
  library += std::to_string(cursor - trimmed.data());
  return Comparison{library + " | " + logs.Take(), reference + " | " + referenceLog};
}

// Random texts from the characters that matter to the reader.
std::string RandomText(std::mt19937& random) {
  static const std::string alphabet = "[[]]{{}}\"\"\"\\,,:: 1.-tnxeu\x01";
  std::uniform_int_distribution<std::size_t> length(0, 24);
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
  std::string text;
  for (std::size_t n = length(random); n > 0; --n) text += alphabet[pick(random)];
  return text;
}

// A random, mostly well-formed JSON text.
std::string RandomJson(std::mt19937& random, int depth) {
  std::uniform_int_distribution<int> kind(0, depth >= 4 ? 6 : 8);
  std::uniform_int_distribution<int> count(0, 4);
  std::uniform_int_distribution<int> blank(0, 5);
  auto space = [&] { return std::string(blank(random) == 0 ? " " : ""); };
  switch (kind(random)) {
    case 0:
      return "null";
    case 1:
      return std::to_string(static_cast<int>(random() % 2001) - 1000);
    case 2:
      return std::to_string(static_cast<int>(random() % 2001) - 1000) + "." +
             std::to_string(random() % 100);
    case 3:
      return random() % 2 == 0 ? "true" : "false";
    case 4:
      return "\"s\\t\\\"" + std::to_string(random() % 10) + "\"";
    case 5:
      return "\"a,b]}\"";
    case 6:
      return "\"\\u0041\"";
    case 7: {
      std::string text = "[" + space();
      for (int n = count(random); n > 0; --n) {
        text += RandomJson(random, depth + 1) + space() + (n > 1 ? "," + space() : "");
      }
      return text + "]";
    }
    default: {
      std::string text = "{" + space();
      for (int n = count(random); n > 0; --n) {
        text += "\"" + std::string(1, static_cast<char>('a' + random() % 4)) + "\"" + space() +
                ":" + space() + RandomJson(random, depth + 1) + (n > 1 ? "," + space() : "");
      }
      return text + "}";
    }
  }
}

std::string Mutated(std::string text, std::mt19937& random) {
  static const std::string alphabet = "[]{}\",:\\ 1.nx";
  const int mutations = static_cast<int>(random() % 4);
  for (int m = 0; m < mutations; ++m) {
    const std::size_t at = text.empty() ? 0 : random() % (text.size() + 1);
    const char c = alphabet[random() % alphabet.size()];
    switch (random() % 3) {
      case 0:
        text.insert(text.begin() + static_cast<std::ptrdiff_t>(at), c);
        break;
      case 1:
        if (at < text.size()) text.erase(at, 1);
        break;
      default:
        if (at < text.size()) text[at] = c;
        break;
    }
  }
  return text;
}

TEST(JsonReferenceReaderTest, RandomTextsReadAlike) {
  LogCollector logs;
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    const std::string text = RandomText(random);
    const Comparison value = CompareValue(text, logs);
    ASSERT_EQ(value.library, value.reference) << "text: " << text;
    const Comparison object = CompareObject(text, logs);
    ASSERT_EQ(object.library, object.reference) << "text: " << text;
  }
}

TEST(JsonReferenceReaderTest, MutatedJsonReadsAlike) {
  LogCollector logs;
  std::mt19937 random(2);
  int readTrue = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = Mutated(RandomJson(random, 0), random);
    const Comparison value = CompareValue(text, logs);
    ASSERT_EQ(value.library, value.reference) << "text: " << text;
    if (value.library.rfind("true", 0) == 0) ++readTrue;
    const Comparison object = CompareObject(text, logs);
    ASSERT_EQ(object.library, object.reference) << "text: " << text;
  }
  // The texts exercise success as well as failure.
  EXPECT_GT(readTrue, 5000);
  EXPECT_LT(readTrue, 19000);
}

TEST(JsonReferenceReaderTest, ObjectsInsideArraysReadAlike) {
  LogCollector logs;
  std::mt19937 random(3);
  for (int i = 0; i < 5000; ++i) {
    const std::string text = "{\"k\": [" + Mutated(RandomJson(random, 1), random) + ", " +
                             Mutated(RandomJson(random, 1), random) + "]}";
    const Comparison value = CompareValue(text, logs);
    ASSERT_EQ(value.library, value.reference) << "text: " << text;
    const Comparison object = CompareObject(text, logs);
    ASSERT_EQ(object.library, object.reference) << "text: " << text;
  }
}

TEST(JsonReferenceReaderTest, CuttingAndSkippingAlike) {
  LogCollector logs;
  std::mt19937 random(4);
  for (int i = 0; i < 20000; ++i) {
    const std::string text =
        i % 2 == 0 ? RandomText(random) : Mutated(RandomJson(random, 0), random);
    const Comparison cut = CompareCutting(text, logs);
    ASSERT_EQ(cut.library, cut.reference) << "text: " << text;
  }
}

}  // namespace
