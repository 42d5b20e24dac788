#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONTEXT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONTEXT_H_

// The JSON text routines behind JsonValue, JsonObject and DataContract: the
// scalar readers and formatters, and the cutting of arrays and objects into
// the raw texts of their elements.
//
// All text is a byte string: nothing converts character sets or decodes code
// points. Nothing here depends on the C or C++ global locale. Every routine
// may be called from any thread; none keeps state between calls.
//
// Failures: the Read* routines return true or throw std::runtime_error; the
// Parse* routines return true, return false for a structural failure, or
// throw; EndOfArray and EndOfObject report by their result and by one
// diagnostic line, and never throw. The routines taking std::string are the
// reference forms; each *View twin behaves identically on the same bytes and
// exists so that the readers can work on slices of one text without copying.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class JsonObject;
class JsonValue;

namespace internal {

// The deepest nesting of arrays and objects that JsonValue::FromJsonString
// and JsonObject::FromJsonString read: the outermost array or object of a text
// is at depth 1. Reading an array or object at a greater depth gives false.
constexpr std::size_t kMaxJsonDepth = 1000;

// Returns `text` without the leading and trailing bytes that are white space
// or control characters (bytes 0 to 32 and 127).
std::string TrimJsonText(const std::string& text);
std::string_view TrimJsonTextView(std::string_view text);

// Returns `text` with backspace, tab, line feed, form feed, carriage return,
// double quote, slash and backslash written as the two-character escapes \b
// \t \n \f \r \" \/ \\. Every other byte is copied unchanged.
std::string EscapeJsonString(const std::string& text);

// Returns `text` escaped and enclosed in double quotes.
std::string FormatJsonString(const std::string& text);
// Appends FormatJsonString(text) to `out`.
void AppendJsonString(std::string& out, std::string_view text);

// Return the JSON text of a scalar. FormatInt writes plain decimal ("-12").
// FormatFloat writes six significant digits in general notation, as "%.6g"
// would (0.1f gives "0.1", 1.0f gives "1"). FormatDouble writes seventeen, as
// "%.17g" would (0.1 gives "0.10000000000000001", 2.0 gives "2", 1e20 gives
// "1e+20"). FormatBool gives "true" or "false".
std::string FormatInt(int value);
std::string FormatFloat(float value);
std::string FormatDouble(double value);
std::string FormatBool(bool value);

// Reads a quoted JSON string into `out`, which is emptied first. The text is
// trimmed; it must start with a double quote, and the string ends at the next
// unescaped double quote, whatever follows it. \" \/ \\ \b \f \n \r \t are
// decoded; \u is dropped and the characters after it are copied as they are.
// Returns true; throws std::runtime_error("Invalid escape character") for any
// other escape and std::runtime_error("JSON data is not a string") when the
// text is not quoted or ends before the closing quote (`out` then holds what
// was decoded so far).
bool ReadJsonString(const std::string& text, std::string& out);
bool ReadJsonStringView(std::string_view text, std::string& out);

// Reads the trimmed text "true" or "false" into `out` and returns true.
// Throws std::runtime_error("JSON data is not a boolean") for anything else,
// leaving `out` unchanged.
bool ReadJsonBool(const std::string& text, bool& out);
bool ReadJsonBoolView(std::string_view text, bool& out);

// Read one number from the trimmed text into `out` and return true. A text is
// accepted exactly when a std::istringstream in the classic locale extracts
// the number from it, ending in neither the fail nor the bad state, and
// consumes all of it: "+7" and "-0" are accepted; "7x", "0x10" and values
// outside the range of the type are not. Throw std::runtime_error with "JSON
// data is not an integer", "JSON data is not a float" or "JSON data is not a
// double" otherwise, leaving `out` unchanged.
bool ReadJsonInt(const std::string& text, int& out);
bool ReadJsonIntView(std::string_view text, int& out);
bool ReadJsonFloat(const std::string& text, float& out);
bool ReadJsonFloatView(std::string_view text, float& out);
bool ReadJsonDouble(const std::string& text, double& out);
bool ReadJsonDoubleView(std::string_view text, double& out);

// Cuts the JSON array `text` into the raw texts of its elements, appended to
// `out` (emptied first) in order. An element's text runs from its first byte
// that is not white space up to, not including, the comma or bracket that
// ends it. Empty elements are dropped ("[1,,2]" gives "1" and "2"), a
// trailing comma is accepted and text after the closing bracket is ignored.
// Nested arrays, nested objects and quoted strings are skipped whole.
// Returns true; returns false for a quoted string that does not end or a
// nested array or object that does not close (EndOfArray/EndOfObject write
// their line). Throws std::runtime_error("JSON data is not an array") if the
// trimmed text is empty, does not start with "[", holds only the "[", or ends
// before the closing "]".
bool ParseArray(const std::string& text, std::vector<std::string>& out);
bool ParseArrayView(std::string_view text, std::vector<std::string_view>& out);

// Cuts the JSON object `text` into a map from property name to the raw text
// of its value (from its first byte that is not white space up to, not
// including, the comma or brace that ends it, so with any blanks before that).
// Names are read with ReadJsonString, so they must be quoted and their
// escapes are decoded; of several properties with the same name the last one
// wins. Text after the closing brace is ignored.
// Returns true. Returns false when a colon has no name before it, a comma or
// the closing brace follows a name without a value or a value without a name
// (an empty name counts as none), an array or object stands where a name
// belongs, or for the failures ParseArray reports as false. Throws
// std::runtime_error("JSON data is not an object") if the trimmed text is
// empty, does not start with "{" (then `out` is left unchanged) or ends before
// the closing "}", and the errors of ReadJsonString for a name.
bool ParseObject(const std::string& text, std::map<std::string, std::string>& out);

// One property cut from an object: its name, decoded, and the raw text of its
// value, a slice of the text that was cut.
struct RawProperty {
  std::string name;
  std::string_view value;
};

// Cuts the JSON object `text` as ParseObject does, with the same results,
// exceptions and lines, into the properties in the order of the text:
// properties of the same name all stay, and the last of them is the one
// ParseObject keeps. Saves the map's allocations for the few properties of a
// record; `out` is emptied first, unless the text is not an object.
bool ParseObjectView(std::string_view text, std::vector<RawProperty>& out);

// Advances `cursor` over one array (EndOfArray) or object (EndOfObject)
// starting at `cursor`, including everything nested in it and its quoted
// strings, and returns true with `cursor` just past the closing bracket or
// brace. A closer of the other kind inside is passed over as ordinary text.
// If `cursor` is at `end` or not on the opening character, writes the line
// "EndOfArray: initial character incorrect" (or "EndOfObject: ...") and
// returns false with `cursor` unchanged. If the text ends first, writes
// "EndOfArray: final character incorrect" or "EndOfObject: final character
// incorrect", after the kind of the innermost array or object still open, and
// returns false. A quoted string that does not end returns false without a
// line. After a failure past the opening character, `cursor` is `end`. Uses
// no recursion, so any depth of nesting is safe.
bool EndOfArray(const char*& cursor, const char* end);
bool EndOfObject(const char*& cursor, const char* end);

// Reads the JSON text `text` into `out`, with the results and errors of
// JsonValue::FromJsonString (which calls this): `out` is Null after a false
// result or an exception. `text` may lie inside `out`; the value is read aside
// and stored only at the end.
//
// Texts in standard JSON (blanks, tabs and line breaks between tokens, no
// exponents, no empty names, integers within int) are read in one pass
// straight into the value; every other text is read by
// ReadJsonValueGeneral. Both readings give the same value for every text the
// one-pass reading accepts.
bool ReadJsonValue(std::string_view text, JsonValue& out);

// Reads the JSON object `text` into `out`, with the results and errors of
// JsonObject::FromJsonString (which calls this); `out` is replaced only on
// success. Takes the one-pass reading like ReadJsonValue.
bool ReadJsonObject(std::string_view text, JsonObject& out);

// The general readers behind ReadJsonValue and ReadJsonObject, with the same
// contracts: they cut each array and object into the raw texts of its
// elements and read those again, which is what gives the format its
// leniencies. Called directly only by tests that compare the two readings.
bool ReadJsonValueGeneral(std::string_view text, JsonValue& out);
bool ReadJsonObjectGeneral(std::string_view text, JsonObject& out);

// Append the JSON text of a value or an object to `out`.
void AppendJsonValue(std::string& out, const JsonValue& value);
void AppendJsonObject(std::string& out, const JsonObject& object);

}  // namespace internal
}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONTEXT_H_
