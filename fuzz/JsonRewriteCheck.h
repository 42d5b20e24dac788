#ifndef WEVLIN_FUZZ_JSONREWRITECHECK_H_
#define WEVLIN_FUZZ_JSONREWRITECHECK_H_

// The rewrite property of the JSON reader and writer: a value that was read
// successfully, written, read back and written again gives the same text both
// times.
//
// Two deliberate asymmetries of the text format are exempt, because the
// format keeps them on purpose:
//  - a Double is a Double only when its text holds a decimal point, so a
//    Double written without one (1e+20, -0, 3000000000) reads back as an
//    Integer, or fails as one;
//  - object property names are written without escaping, so a name holding a
//    double quote or a backslash is written as unreadable text.
// For a value with either, the text is still read back and written (every
// path runs), but the results are not compared.

#include <stdexcept>
#include <string>

#include "FuzzCheck.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace wevlin_fuzz {

bool HasDeliberateAsymmetry(
    const Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue& value);

// Returns true if a property name of `object`, or anything inside it, falls
// under the asymmetries above.
inline bool HasDeliberateAsymmetry(
    const Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonObject& object) {
  for (const auto& [name, value] : object.GetAllProperties()) {
    if (name.find_first_of("\"\\") != std::string::npos) return true;
    if (HasDeliberateAsymmetry(value)) return true;
  }
  return false;
}

inline bool HasDeliberateAsymmetry(
    const Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue& value) {
  using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;
  switch (value.GetType()) {
    case JsonValue::Double:
      return value.ToJsonString().find('.') == std::string::npos;
    case JsonValue::Object:
      return HasDeliberateAsymmetry(value.GetAsObject());
    case JsonValue::Array:
      for (const JsonValue& element : value.GetAsArray()) {
        if (HasDeliberateAsymmetry(element)) return true;
      }
      return false;
    default:
      return false;
  }
}

// Checks the rewrite property for `value` (a JsonValue or a JsonObject that
// was read successfully), and that a copy writes the same text.
template <typename T>
void CheckRewrite(const T& value) {
  const std::string first = value.ToJsonString();
  Require(T(value).ToJsonString() == first, "a copy writes another text", {first});
  const bool exempt = HasDeliberateAsymmetry(value);
  T again;
  bool read = false;
  try {
    read = again.FromJsonString(first);
  } catch (const std::runtime_error& e) {
    Require(exempt, std::string("reading the written text threw: ") + e.what(), {first});
    return;
  }
  if (exempt) {
    again.ToJsonString();
    return;
  }
  Require(read, "reading the written text gave false", {first});
  const std::string second = again.ToJsonString();
  Require(second == first, "writing, reading and writing again changed the text", {first, second});
}

}  // namespace wevlin_fuzz

#endif  // WEVLIN_FUZZ_JSONREWRITECHECK_H_
