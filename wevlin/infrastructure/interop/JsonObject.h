#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_JSONOBJECT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_JSONOBJECT_H_

#include <map>
#include <string>

#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// A JSON object of the library's own model: a set of named JsonValues.
//
// Property names are byte strings, each present at most once, kept in
// ascending byte order (std::less<std::string>, which compares the bytes as
// unsigned values, so "\x80" sorts after "z"). Properties are enumerated and
// written in that order, never in insertion order. The object owns copies of
// its values; copying the object copies them deeply.
//
// ToJsonString writes {"a": 1, "b": "x"}; property names are written exactly
// as stored, without escaping, so a name holding a double quote or a
// backslash gives text that does not read back.
//
// Not thread-safe: an object may be read from several threads at once, but
// must not be changed while another thread uses it.
class WEVLIN_EXPORT JsonObject {
 public:
  // The properties, by name in ascending byte order.
  using PropertyMap = std::map<std::string, JsonValue>;

  // Creates an empty object.
  JsonObject() noexcept;
  // Copies `other` deeply.
  JsonObject(const JsonObject& other);
  JsonObject& operator=(const JsonObject& other);
  // Takes `other`'s properties without copying; `other` is left empty.
  JsonObject(JsonObject&& other) noexcept;
  JsonObject& operator=(JsonObject&& other) noexcept;
  virtual ~JsonObject();

  // Returns true if a property is stored under `name`.
  bool HasProperty(const std::string& name) const;

  // Returns the value stored under `name`. Throws std::runtime_error("JSON
  // Object key not found.") if there is none; call HasProperty first when the
  // name may be absent. The reference stays valid until the property is
  // replaced or the object changes as a whole.
  const JsonValue& GetProperty(const std::string& name) const;

  // Stores a copy of `value` under `name`, replacing any value already stored
  // under that name.
  void SetProperty(const std::string& name, const JsonValue& value);
  // Stores `value` under `name` without copying it; `value` is left Null.
  void SetProperty(std::string name, JsonValue&& value);

  // Returns all properties, for iteration in ascending byte order of names.
  const PropertyMap& GetAllProperties() const;

  // Replaces the properties with those read from the JSON object `text`. The
  // new content is built aside: after a false result or an exception the
  // object is unchanged. Values are read in ascending name order and the
  // first value that reads false makes the result false; of several
  // properties with the same name, the last one wins. Returns false on a
  // structural failure (see JsonValue::FromJsonString). Throws
  // std::runtime_error("JSON data is not an object") when the text does not
  // start with "{" or ends before its closing "}", "JSON data is not a
  // string" for an unquoted property name, and any error of reading a value.
  bool FromJsonString(const std::string& text);

  // Returns the object as JSON text on one line, e.g. {"a": 2, "b": 3}; an
  // empty object is {}. Never fails.
  std::string ToJsonString() const;

 private:
  PropertyMap properties_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_JSONOBJECT_H_
