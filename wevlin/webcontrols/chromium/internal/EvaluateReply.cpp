#include "wevlin/webcontrols/chromium/internal/EvaluateReply.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

namespace {

using Json = nlohmann::ordered_json;

std::string StringField(const Json& object, const char* key) {
  const auto it = object.find(key);
  return it != object.end() && it->is_string() ? it->get<std::string>() : std::string();
}

std::int64_t NumberField(const Json& object, const char* key) {
  const auto it = object.find(key);
  return it != object.end() && it->is_number_integer() ? it->get<std::int64_t>() : 0;
}

// Returns an error's description without the stack that follows its message.
std::string WithoutStack(const std::string& description) {
  return description.substr(0, description.find("\n    at "));
}

// Returns line `index` (from 0) of `script`, or "" past its end.
std::string LineOf(const std::string& script, std::int64_t index) {
  std::size_t start = 0;
  for (std::int64_t line = 0; line < index; ++line) {
    const std::size_t end = script.find('\n', start);
    if (end == std::string::npos) return {};
    start = end + 1;
  }
  std::string line = script.substr(start, script.find('\n', start) - start);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::string ThrownText(const Json& exception) {
  const std::string type = StringField(exception, "type");
  const auto value = exception.find("value");
  if (type == "string" && value != exception.end() && value->is_string()) {
    return value->get<std::string>();
  }
  std::string description = StringField(exception, "description");
  if (StringField(exception, "subtype") == "error") return WithoutStack(description);
  if (!description.empty()) return description;
  if (value != exception.end()) return value->dump(-1, ' ', false, Json::error_handler_t::replace);
  if (type == "undefined") return "undefined";
  return {};
}

// Returns the URL of the script in which the failure happened: the details'
// own, else that of the stack frame running the same script; "" for the
// evaluated script itself, which has none.
std::string FailureUrl(const Json& details) {
  std::string url = StringField(details, "url");
  if (!url.empty()) return url;
  const std::string scriptId = StringField(details, "scriptId");
  const auto stack = details.find("stackTrace");
  if (scriptId.empty() || stack == details.end() || !stack->is_object()) return {};
  const auto frames = stack->find("callFrames");
  if (frames == stack->end() || !frames->is_array()) return {};
  for (const Json& frame : *frames) {
    if (frame.is_object() && StringField(frame, "scriptId") == scriptId) {
      return StringField(frame, "url");
    }
  }
  return {};
}

// Writes the finite number `value` as JavaScript's Number.prototype.toString
// does: the shortest digits that read back as `value`, in positional notation
// from 1e-7 up to 1e21 and as "1.5e+21" or "1e-7" outside.
std::string JavaScriptNumber(double value) {
  if (value == 0) return "0";
  char buffer[64];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                     std::chars_format::scientific);
  const std::string scientific(buffer, written.ptr);
  const std::size_t mark = scientific.find('e');
  std::string digits = scientific.substr(0, mark);
  digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
  // The value is 0.<digits> times ten to the power `point`.
  const int point = static_cast<int>(std::strtol(scientific.c_str() + mark + 1, nullptr, 10)) + 1;
  const int count = static_cast<int>(digits.size());
  std::string text = value < 0 ? "-" : "";
  if (count <= point && point <= 21) {
    text += digits + std::string(static_cast<std::size_t>(point - count), '0');
  } else if (0 < point && point <= 21) {
    text += digits.substr(0, static_cast<std::size_t>(point)) + "." +
            digits.substr(static_cast<std::size_t>(point));
  } else if (-6 < point && point <= 0) {
    text += "0." + std::string(static_cast<std::size_t>(-point), '0') + digits;
  } else {
    text += digits.substr(0, 1);
    if (count > 1) text += "." + digits.substr(1);
    text += point - 1 < 0 ? "e-" : "e+";
    text += std::to_string(std::abs(point - 1));
  }
  return text;
}

// Appends `text` as a JSON string, escaped as JSON.stringify escapes it:
// quote, backslash and the control characters, the common ones in their short
// forms, the others as lower-case \u00XX. nlohmann's writer uses exactly
// those escapes.
void AppendString(const std::string& text, std::string* out) {
  *out += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Appends `value` as JSON text: members in their order, numbers as
// JavaScript writes them, no blanks.
void AppendJson(const Json& value, std::string* out) {
  switch (value.type()) {
    case Json::value_t::object: {
      out->push_back('{');
      for (auto member = value.begin(); member != value.end(); ++member) {
        if (member != value.begin()) out->push_back(',');
        AppendString(member.key(), out);
        out->push_back(':');
        AppendJson(member.value(), out);
      }
      out->push_back('}');
      break;
    }
    case Json::value_t::array: {
      out->push_back('[');
      for (auto element = value.begin(); element != value.end(); ++element) {
        if (element != value.begin()) out->push_back(',');
        AppendJson(*element, out);
      }
      out->push_back(']');
      break;
    }
    case Json::value_t::string:
      AppendString(value.get_ref<const std::string&>(), out);
      break;
    case Json::value_t::boolean:
      *out += value.get<bool>() ? "true" : "false";
      break;
    case Json::value_t::number_integer:
      *out += std::to_string(value.get<std::int64_t>());
      break;
    case Json::value_t::number_unsigned:
      *out += std::to_string(value.get<std::uint64_t>());
      break;
    case Json::value_t::number_float:
      *out += JavaScriptNumber(value.get<double>());
      break;
    default:
      *out += "null";
      break;
  }
}

}  // namespace

bool ReadResultText(const Json& remoteObject, std::string* text) {
  const std::string type = StringField(remoteObject, "type");
  const std::string subtype = StringField(remoteObject, "subtype");
  const auto value = remoteObject.find("value");
  if (type == "undefined" || type == "symbol" || type == "function" ||
      (type == "object" && subtype == "null")) {
    text->clear();
    return true;
  }
  if (type == "string") {
    *text = value != remoteObject.end() && value->is_string() ? value->get<std::string>() : "";
    return true;
  }
  if (type == "boolean") {
    *text =
        value != remoteObject.end() && value->is_boolean() && value->get<bool>() ? "true" : "false";
    return true;
  }
  if (type == "number" || type == "bigint") {
    std::string written = StringField(remoteObject, "unserializableValue");
    if (written.empty()) written = StringField(remoteObject, "description");
    if (written.empty() && value != remoteObject.end()) written = value->dump();
    if (written == "-0") written = "0";
    if (type == "bigint" && !written.empty() && written.back() == 'n') written.pop_back();
    *text = written;
    return true;
  }
  if (value != remoteObject.end()) {
    text->clear();
    AppendJson(*value, text);
    return true;
  }
  if (remoteObject.contains("objectId")) return false;
  text->clear();
  return true;
}

bool ReadResultText(Json&& remoteObject, std::string* text) {
  const auto value = remoteObject.find("value");
  if (value != remoteObject.end() && value->is_string() &&
      StringField(remoteObject, "type") == "string") {
    *text = std::move(value->get_ref<std::string&>());
    return true;
  }
  return ReadResultText(static_cast<const Json&>(remoteObject), text);
}

bool IsUncopyableValueError(const std::string& errorText) {
  // The texts with which the browser refuses to copy a value: a symbol, or a
  // BigInt inside an object; a cycle or deep nesting; a copy too deep for
  // the protocol's own encoding.
  static const char* const kTexts[] = {
      "Object couldn't be returned by value",
      "Object reference chain is too long",
      "Failed to convert response to JSON",
  };
  return std::any_of(std::begin(kTexts), std::end(kTexts),
                     [&](const char* text) { return errorText.find(text) != std::string::npos; });
}

Infrastructure::Interop::IWebControl::ScriptException MakeScriptException(
    const Json& exceptionDetails, const std::string& script) {
  std::string message;
  const auto exception = exceptionDetails.find("exception");
  if (exception != exceptionDetails.end() && exception->is_object()) {
    message = ThrownText(*exception);
  }
  if (message.empty()) message = StringField(exceptionDetails, "text");

  const std::int64_t line = NumberField(exceptionDetails, "lineNumber");
  const std::int64_t column = NumberField(exceptionDetails, "columnNumber");
  std::string details =
      "line " + std::to_string(line + 1) + ", column " + std::to_string(column + 1);
  const std::string url = FailureUrl(exceptionDetails);
  if (url.empty()) {
    details += ": " + LineOf(script, line);
  } else {
    details += " of " + url;
  }
  return {message, details};
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal
