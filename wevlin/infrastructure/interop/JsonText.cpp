#include "wevlin/infrastructure/interop/internal/JsonText.h"

#include <string>
#include <string_view>
#include <utility>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/JsonNumberFormat.h"
#include "wevlin/infrastructure/interop/internal/JsonStrictReader.h"
#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// The scalar routines and the two front doors of reading; the readers, the
// number routines, the nest index and the writer have files of their own
// beside internal/JsonText.h.

std::string_view TrimJsonTextView(std::string_view text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && IsTrimmed(text[begin])) ++begin;
  while (end > begin && IsTrimmed(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

std::string TrimJsonText(const std::string& text) { return std::string(TrimJsonTextView(text)); }

namespace {

// Appends `text` to `out` with the escapes of EscapeJsonString.
void AppendEscaped(std::string& out, std::string_view text) {
  const char* run = text.data();
  const char* const end = run + text.size();
  for (const char* p = run; p < end; ++p) {
    const char escape = kEscapeTable[static_cast<unsigned char>(*p)];
    if (escape != 0) {
      out.append(run, static_cast<std::size_t>(p - run));
      out += '\\';
      out += escape;
      run = p + 1;
    }
  }
  out.append(run, static_cast<std::size_t>(end - run));
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
  out.reserve(out.size() + text.size() + 2);
  out += '"';
  AppendEscaped(out, text);
  out += '"';
}

std::string EscapeJsonString(const std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  AppendEscaped(escaped, text);
  return escaped;
}

std::string FormatJsonString(const std::string& text) {
  std::string quoted;
  AppendJsonString(quoted, text);
  return quoted;
}

std::string FormatInt(int value) {
  std::string text;
  AppendInt(text, value);
  return text;
}

std::string FormatFloat(float value) {
  std::string text;
  AppendGeneral(text, static_cast<double>(value), 6);
  return text;
}

std::string FormatDouble(double value) {
  std::string text;
  AppendGeneral(text, value, 17);
  return text;
}

std::string FormatBool(bool value) { return value ? "true" : "false"; }

bool ReadJsonStringView(std::string_view text, std::string& out) {
  out.clear();
  text = TrimJsonTextView(text);
  if (text.empty() || text.front() != '"') Fail(kNotAString);
  const char* p = text.data() + 1;
  const char* const end = text.data() + text.size();
  for (;;) {
    const char* run = p;
    while (p < end && *p != '"' && *p != '\\') ++p;
    out.append(run, static_cast<std::size_t>(p - run));
    if (p == end) Fail(kNotAString);
    if (*p == '"') return true;
    // A backslash: decode the escape after it.
    if (p + 1 == end) Fail(kNotAString);
    if (!AppendEscape(p[1], out)) Fail(kInvalidEscape);
    p += 2;
  }
}

bool ReadJsonString(const std::string& text, std::string& out) {
  return ReadJsonStringView(text, out);
}

bool ReadJsonBoolView(std::string_view text, bool& out) {
  text = TrimJsonTextView(text);
  if (text == "true") {
    out = true;
  } else if (text == "false") {
    out = false;
  } else {
    Fail(kNotABoolean);
  }
  return true;
}

bool ReadJsonBool(const std::string& text, bool& out) { return ReadJsonBoolView(text, out); }

bool ReadJsonValue(std::string_view text, JsonValue& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (!trimmed.empty()) {
    JsonValue result;
    bool read = false;
    try {
      read = JsonStrictReader(trimmed).ReadTop(result);
    } catch (...) {
      // Only a failed allocation gets here; the value ends Null as after any
      // exception.
      out.Clear();
      throw;
    }
    if (read) {
      out = std::move(result);
      return true;
    }
  }
  return ReadJsonValueGeneral(text, out);
}

bool ReadJsonObject(std::string_view text, JsonObject& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (!trimmed.empty() && trimmed.front() == '{') {
    JsonObject result;
    if (JsonStrictReader(trimmed).ReadTopObject(result)) {
      out = std::move(result);
      return true;
    }
  }
  return ReadJsonObjectGeneral(text, out);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
