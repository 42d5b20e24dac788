#include "wevlin/webcontrols/chromium/internal/EvaluateReply.h"

#include <cstdint>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

namespace {

using Json = nlohmann::json;

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
    if (end == std::string::npos) return std::string();
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
  const std::string description = StringField(exception, "description");
  if (StringField(exception, "subtype") == "error") return WithoutStack(description);
  if (!description.empty()) return description;
  if (value != exception.end()) return value->dump(-1, ' ', false, Json::error_handler_t::replace);
  if (type == "undefined") return "undefined";
  return std::string();
}

// Returns the URL of the script in which the failure happened: the details'
// own, else that of the stack frame running the same script; "" for the
// evaluated script itself, which has none.
std::string FailureUrl(const Json& details) {
  const std::string url = StringField(details, "url");
  if (!url.empty()) return url;
  const std::string scriptId = StringField(details, "scriptId");
  const auto stack = details.find("stackTrace");
  if (scriptId.empty() || stack == details.end() || !stack->is_object()) return std::string();
  const auto frames = stack->find("callFrames");
  if (frames == stack->end() || !frames->is_array()) return std::string();
  for (const Json& frame : *frames) {
    if (frame.is_object() && StringField(frame, "scriptId") == scriptId) {
      return StringField(frame, "url");
    }
  }
  return std::string();
}

}  // namespace

bool ReadPrimitiveResult(const Json& remoteObject, std::string* text) {
  const std::string type = StringField(remoteObject, "type");
  const std::string subtype = StringField(remoteObject, "subtype");
  const auto value = remoteObject.find("value");
  if (type == "undefined" || type == "symbol" || (type == "object" && subtype == "null")) {
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
  if (remoteObject.contains("objectId")) return false;
  // An object passed by value (no handle): its JSON as the browser gave it.
  *text = value != remoteObject.end() ? value->dump(-1, ' ', false, Json::error_handler_t::replace)
                                      : std::string();
  return true;
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
  return Infrastructure::Interop::IWebControl::ScriptException(message, details);
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal
