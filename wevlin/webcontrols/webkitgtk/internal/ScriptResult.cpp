#include "wevlin/webcontrols/webkitgtk/internal/ScriptResult.h"

#include <cctype>
#include <cstddef>

#include <webkit2/webkit2.h>

namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::internal {

namespace {

using ScriptException = Infrastructure::Interop::IWebControl::ScriptException;

// Takes a GLib string and frees it.
std::string Take(char* text) {
  if (text == nullptr) return {};
  std::string result(text);
  g_free(text);
  return result;
}

// Reads the digits at `pos`; returns how many there were.
std::size_t Digits(const std::string& text, std::size_t pos) {
  std::size_t end = pos;
  while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])) != 0) ++end;
  return end - pos;
}

}  // namespace

std::string ScriptResultText(JSCValue* value) {
  if (value == nullptr || jsc_value_is_undefined(value) != FALSE ||
      jsc_value_is_null(value) != FALSE) {
    return {};
  }
  if (jsc_value_is_string(value) != FALSE) {
    // As bytes: a string with U+0000 in it is kept whole.
    GBytes* bytes = jsc_value_to_string_as_bytes(value);
    if (bytes == nullptr) return {};
    gsize size = 0;
    const auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
    std::string text(data == nullptr ? "" : data, data == nullptr ? 0 : size);
    g_bytes_unref(bytes);
    return text;
  }
  if (jsc_value_is_number(value) != FALSE || jsc_value_is_boolean(value) != FALSE) {
    // JavaScriptCore writes numbers as JavaScript does ("1e+21", "NaN").
    return Take(jsc_value_to_string(value));
  }
  if (jsc_value_is_object(value) != FALSE) return Take(jsc_value_to_json(value, 0));
  return Take(jsc_value_to_string(value));
}

ScriptException SplitFailureText(const std::string& text) {
  // The location is the first ":<line>: " or ":<line>:<column>: " in the
  // text; what comes before it is the document's URL, which has no ": ".
  for (std::size_t colon = text.find(':'); colon != std::string::npos;
       colon = text.find(':', colon + 1)) {
    const std::size_t lineDigits = Digits(text, colon + 1);
    if (lineDigits == 0) continue;
    std::size_t pos = colon + 1 + lineDigits;
    std::string column;
    if (pos < text.size() && text[pos] == ':') {
      const std::size_t columnDigits = Digits(text, pos + 1);
      if (columnDigits != 0) {
        column = text.substr(pos + 1, columnDigits);
        pos += 1 + columnDigits;
      }
    }
    if (text.compare(pos, 2, ": ") != 0) continue;
    const std::string url = text.substr(0, colon);
    std::string details = "line " + text.substr(colon + 1, lineDigits);
    if (!column.empty()) details += ", column " + column;
    if (!url.empty()) details += " of " + url;
    return {text.substr(pos + 2), details};
  }
  return {text, std::string()};
}

bool IsUncopyableValue(const GError* error) {
  return error != nullptr && error->domain == WEBKIT_JAVASCRIPT_ERROR &&
         error->code == WEBKIT_JAVASCRIPT_ERROR_INVALID_RESULT;
}

ScriptException ScriptFailure(const GError* error) {
  if (error == nullptr) return {"The script failed", std::string()};
  const std::string text = error->message == nullptr ? "" : error->message;
  if (error->domain == WEBKIT_JAVASCRIPT_ERROR &&
      error->code == WEBKIT_JAVASCRIPT_ERROR_SCRIPT_FAILED) {
    return SplitFailureText(text);
  }
  return {text, std::string()};
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::WebKitGtk::internal
