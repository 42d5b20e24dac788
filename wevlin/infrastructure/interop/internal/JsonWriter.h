#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONWRITER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONWRITER_H_

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/JsonNumberFormat.h"
#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// Writes values and objects straight into the character buffer of a string:
// the string is lengthened a little ahead of the cursor and the text is stored
// through the cursor, with no per-token call into the string. The destructor
// cuts the string to what was written. One writer per text; internal.
class JsonWriter {
 public:
  // The cursor starts at the end of the text already in `out`, with no room
  // reserved yet, so that it always points into the string.
  explicit JsonWriter(std::string& out) : out_(out), p_(out.data() + out.size()), end_(p_) {}
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;
  ~JsonWriter() { out_.resize(static_cast<std::size_t>(p_ - out_.data())); }

  void Value(const JsonValue& value) {
    switch (value.GetType()) {
      case JsonValue::Null:
        Put("null", 4);
        break;
      case JsonValue::Integer: {
        // Formatted aside, so that a short text stays within the string's
        // own small buffer.
        char digits[16];
        const char* end = std::to_chars(digits, digits + sizeof(digits), value.GetAsInt()).ptr;
        Put(digits, static_cast<std::size_t>(end - digits));
        break;
      }
      case JsonValue::String:
        String(value.GetAsString());
        break;
      case JsonValue::Double:
        Double(value.GetAsDouble());
        break;
      case JsonValue::Boolean:
        if (value.GetAsBool()) {
          Put("true", 4);
        } else {
          Put("false", 5);
        }
        break;
      case JsonValue::Object:
        Object(value.GetAsObject());
        break;
      case JsonValue::Array: {
        Put('[');
        bool first = true;
        for (const JsonValue& element : value.GetAsArray()) {
          if (!first) Put(", ", 2);
          first = false;
          Value(element);
        }
        Put(']');
        break;
      }
      default:
        // A type outside the known kinds writes nothing.
        break;
    }
  }

  void Object(const JsonObject& object) {
    Put('{');
    bool first = true;
    for (const auto& [name, value] : object.GetAllProperties()) {
      // ", " (not before the first), the quote, the name unescaped, then the
      // quote, colon and blank.
      Reserve(name.size() + 6);
      if (!first) {
        p_[0] = ',';
        p_[1] = ' ';
        p_ += 2;
      }
      first = false;
      *p_++ = '"';
      std::memcpy(p_, name.data(), name.size());
      p_ += name.size();
      std::memcpy(p_, "\": ", 3);
      p_ += 3;
      Value(value);
    }
    Put('}');
  }

 private:
  void Put(char c) {
    Reserve(1);
    *p_++ = c;
  }

  void Put(const char* text, std::size_t size) {
    Reserve(size);
    std::memcpy(p_, text, size);
    p_ += size;
  }

  // The quoted, escaped string: at most two characters per byte.
  void String(const std::string& text) {
    Reserve(2 * text.size() + 2);
    *p_++ = '"';
    const char* run = text.data();
    const char* const end = run + text.size();
    for (const char* q = run; q < end; ++q) {
      const char escape = kEscapeTable[static_cast<unsigned char>(*q)];
      if (escape != 0) {
        std::memcpy(p_, run, static_cast<std::size_t>(q - run));
        p_ += q - run;
        p_[0] = '\\';
        p_[1] = escape;
        p_ += 2;
        run = q + 1;
      }
    }
    std::memcpy(p_, run, static_cast<std::size_t>(end - run));
    p_ += end - run;
    *p_++ = '"';
  }

  void Double(double value) {
    if (!std::isfinite(value)) {
      std::string text;
      AppendGeneral(text, value, 17);
      Put(text.data(), text.size());
      return;
    }
    // "%.17g" needs at most 24 characters ("-1.2345678901234567e-308").
    char text[32];
    Put(text, static_cast<std::size_t>(WriteGeneral(text, value, 17) - text));
  }

  void Reserve(std::size_t size) {
    if (static_cast<std::size_t>(end_ - p_) < size) Grow(size);
  }

  // Makes room for at least `size` more characters, and as many again as
  // are written already, up to 64 KiB. Lengthening the string fills the new
  // part with zeros, so it is kept to what will be written soon: the string's
  // own capacity still grows by doubling (linear cost), but the memory it
  // reserves beyond the text is never touched, as with appending.
  void Grow(std::size_t size) {
    const auto used = static_cast<std::size_t>(p_ - out_.data());
    out_.resize(used + size + std::min<std::size_t>(used, 65536));
    p_ = out_.data() + used;
    end_ = out_.data() + out_.size();
  }

  std::string& out_;
  char* p_;    // where the next character goes
  char* end_;  // the end of the room reserved in `out_`
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONWRITER_H_
