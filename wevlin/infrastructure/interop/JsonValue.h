#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_JSONVALUE_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_JSONVALUE_H_

#include <string>
#include <vector>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class JsonObject;
struct JsonValueBody;

// One JSON value of the library's own model: null, a 32-bit integer, a byte
// string, a double, a boolean, an object (JsonObject) or an array of values.
//
// The value owns all of its content: copying copies it deeply (strings, the
// whole array and the whole object), and destroying the value destroys it.
// Every setter first clears the value, so any value may be overwritten by a
// value of any other kind. The accessors never convert: GetAsDouble on an
// Integer value throws, as does GetAsInt on a Double value; use GetType when
// the kind is not known.
//
// Text: ToJsonString writes the value on one line (", " between items, a blank
// after each colon, object keys in ascending byte order, doubles with 17
// significant digits); FromJsonString reads it back. The reader classifies a
// value by its first character, and a number is a Double only if its text
// holds a decimal point, so a Double written as "2" reads back as the Integer
// 2. Reading is bounded: the outermost array or object of a text is at depth
// 1, its arrays and objects at depth 2, and so on; reading an array or object
// at a depth above 1000 gives false instead of descending further.
//
// Include "wevlin/infrastructure/interop/JsonObject.h" to work with object
// values.
//
// Not thread-safe: a value may be read from several threads at once, but must
// not be changed while another thread uses it.
class WEVLIN_EXPORT JsonValue {
 public:
  // The kind of a value. The numbers are fixed: GetType returns them.
  enum ValueType { Null = 0, Integer, String, Double, Boolean, Object, Array };

  // Creates a Null value.
  JsonValue();
  // Creates an Integer value.
  JsonValue(int value);
  // Creates a Double value.
  JsonValue(double value);
  // Creates a Boolean value.
  JsonValue(bool value);
  // Creates a String value holding the bytes of `value`.
  JsonValue(const std::string& value);
  JsonValue(std::string&& value);
  // Creates a String value from a zero-terminated text (a null pointer gives
  // the empty string). Without this overload a string literal would convert
  // to bool.
  JsonValue(const char* value);
  // Creates an Object value holding a copy of `value`.
  JsonValue(const JsonObject& value);
  JsonValue(JsonObject&& value);
  // Creates an Array value holding copies of `value`'s elements, in order.
  JsonValue(const std::vector<JsonValue>& value);
  JsonValue(std::vector<JsonValue>&& value);

  // Copies `other` deeply.
  JsonValue(const JsonValue& other);
  JsonValue& operator=(const JsonValue& other);
  // Takes `other`'s content without copying; `other` is left a Null value.
  JsonValue(JsonValue&& other) noexcept;
  JsonValue& operator=(JsonValue&& other) noexcept;

  ~JsonValue();

  // Each of these clears the value, stores the argument and sets the
  // matching type.
  void SetValue(int value);
  void SetValue(double value);
  void SetValue(bool value);
  void SetValue(const std::string& value);
  void SetValue(std::string&& value);
  // Stores a String from a zero-terminated text (a null pointer gives the
  // empty string).
  void SetValue(const char* value);
  void SetValue(const JsonObject& value);
  void SetValue(JsonObject&& value);
  void SetValue(const std::vector<JsonValue>& value);
  void SetValue(std::vector<JsonValue>&& value);

  // Appends a copy of `value` to this array. A value that is not an Array is
  // first cleared, whatever it held, and becomes a one-element array; no
  // error is reported.
  void PushBack(const JsonValue& value);
  void PushBack(JsonValue&& value);

  // Resets the value to Null, releasing at once whatever it held (the
  // array's elements, the object's properties, the string's bytes).
  void Clear();

  // Returns the kind of the value.
  ValueType GetType() const;

  // Return the stored value. Each requires the value to be of exactly the
  // named kind and throws std::logic_error("JsonValue invalid type requested")
  // otherwise; there is no conversion between kinds. References stay valid
  // until the value is next changed.
  int GetAsInt() const;
  double GetAsDouble() const;
  bool GetAsBool() const;
  const std::string& GetAsString() const;
  const JsonObject& GetAsObject() const;
  const std::vector<JsonValue>& GetAsArray() const;

  // Replaces the value with the one read from `text`. The value is cleared to
  // Null first, so after a false result or an exception it is Null. Returns
  // false on a structural failure (a word starting with n that is not
  // "null", an unterminated string inside an array or object, a misplaced
  // comma, colon or brace in an object, an unbalanced nested array or
  // object, nesting above 1000 levels, or any element that reads false).
  // Throws std::runtime_error for a malformed scalar, with one of the texts
  // "JSON data is not a string", "Invalid escape character", "JSON data is
  // not a boolean", "JSON data is not an integer", "JSON data is not a
  // double", "JSON data is not an array" or "JSON data is not an object".
  // Callers must treat both a false result and an exception as invalid text.
  bool FromJsonString(const std::string& text);

  // Returns the value as JSON text on one line. Never fails.
  std::string ToJsonString() const;

 private:
  // Throws std::logic_error("JsonValue invalid type requested") unless the
  // value is of kind `type`.
  void ValidateType(ValueType type) const;

  // Always points to a body; a moved-from value points to a shared, never
  // changed Null body until it is next set.
  JsonValueBody* body_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_JSONVALUE_H_
