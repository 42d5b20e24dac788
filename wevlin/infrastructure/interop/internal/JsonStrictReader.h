#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONSTRICTREADER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONSTRICTREADER_H_

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/BodilessNulls.h"
#include "wevlin/infrastructure/interop/internal/JsonNumberRead.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"
#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// The one-pass reader. The general reader (JsonGeneralReader) cuts every
// array and object into raw element texts and reads each again, which is what
// gives the format its leniencies; on the texts that standard JSON writers
// produce, those cuts always fall exactly at the tokens. JsonStrictReader
// reads such texts in one pass straight into the values, and declines
// everything else, so that the general reader reads it (and produces the
// results, false values and exceptions of the format). One reader per
// reading; internal.
//
// It accepts the standard grammar with these limits, each chosen so that an
// accepted text reads to exactly the value the general reader builds:
//  - white space between tokens is blank, tab, line feed or carriage return;
//  - a number is an optional minus, digits and, optionally, a point followed
//    by digits (no exponent, no plus sign); without a point it must fit in an
//    int, with one it must be short enough for the quick double path of
//    ReadJsonDoubleView;
//  - strings use only the escapes that ReadJsonStringView decodes (\u is read
//    exactly as it does: the u is dropped);
//  - property names are not empty; nesting is at most kMaxJsonDepth deep;
//  - after a value inside an array or object comes a comma or the closer;
//    after a number, true, false or null at the top comes nothing.
// As in the general reader, text after the closing bracket, brace or quote of the
// outermost value is not looked at.
class JsonStrictReader {
 public:
  // `text` is trimmed and not empty.
  explicit JsonStrictReader(std::string_view text)
      : p_(text.data()), end_(text.data() + text.size()) {}

  // Reads the whole text as one value into `out` (Null). Returns false when
  // the text is not of the accepted form; `out` is then unspecified.
  bool ReadTop(JsonValue& out) {
    const char first = *p_;
    if (!ReadValue(out, 1)) return false;
    // A scalar must be the whole text, as its reading routine requires.
    return first == '[' || first == '{' || first == '"' || p_ == end_;
  }

  // Reads the object that opens the text into `out` (empty).
  bool ReadTopObject(JsonObject& out) { return *p_ == '{' && ReadObject(out, 1); }

 private:
  static bool IsBlank(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

  void SkipBlanks() {
    while (p_ < end_ && IsBlank(*p_)) ++p_;
  }

  // After the value of an array or object: skips blanks and takes the comma
  // (returning 1) or the closer (returning 0); anything else gives -1.
  int Separator(char closer) {
    SkipBlanks();
    if (p_ == end_) return -1;
    const char c = *p_++;
    if (c == ',') {
      SkipBlanks();
      return 1;
    }
    return c == closer ? 0 : -1;
  }

  bool ReadValue(JsonValue& out, std::size_t depth) {
    if (p_ == end_) return false;
    switch (*p_) {
      case '"': {
        std::string text;
        if (!ReadString(text)) return false;
        out.SetValue(std::move(text));
        return true;
      }
      case '[':
        return ReadArray(out, depth);
      case '{': {
        JsonObject object;
        if (!ReadObject(object, depth)) return false;
        out.SetValue(std::move(object));
        return true;
      }
      case 't':
        if (!Word("true")) return false;
        out.SetValue(true);
        return true;
      case 'f':
        if (!Word("false")) return false;
        out.SetValue(false);
        return true;
      case 'n':
        // Null already.
        return Word("null");
      default:
        return ReadNumber(out);
    }
  }

  bool Word(std::string_view word) {
    if (static_cast<std::size_t>(end_ - p_) < word.size() ||
        std::memcmp(p_, word.data(), word.size()) != 0) {
      return false;
    }
    p_ += word.size();
    return true;
  }

  bool ReadNumber(JsonValue& out) {
    const char* const first = p_;
    if (*p_ == '-') ++p_;
    const char* const digits = p_;
    while (p_ < end_ && *p_ >= '0' && *p_ <= '9') ++p_;
    if (p_ == digits) return false;
    bool point = false;
    if (p_ < end_ && *p_ == '.') {
      point = true;
      const char* const fraction = ++p_;
      while (p_ < end_ && *p_ >= '0' && *p_ <= '9') ++p_;
      if (p_ == fraction) return false;
    }
    // A number ends at a blank, a separator or the end; an exponent or any
    // other character is left to Reader.
    if (p_ < end_ && !IsBlank(*p_) && *p_ != ',' && *p_ != ']' && *p_ != '}') return false;
    const std::string_view token(first, static_cast<std::size_t>(p_ - first));
    if (point) {
      double value = 0.0;
      if (!FastFloating(token, 250, value)) return false;
      out.SetValue(value);
    } else {
      int value = 0;
      if (FastInt(token, value) != 1) return false;
      out.SetValue(value);
    }
    return true;
  }

  // Reads the quoted string at the cursor into `out` (empty), decoding as
  // ReadJsonStringView does.
  bool ReadString(std::string& out) {
    ++p_;
    for (;;) {
      const char* run = p_;
      while (p_ < end_ && *p_ != '"' && *p_ != '\\') ++p_;
      out.append(run, static_cast<std::size_t>(p_ - run));
      if (p_ == end_ || end_ - p_ < 2) {
        // Unterminated, or a backslash or quote at the very end.
        if (p_ < end_ && *p_ == '"') {
          ++p_;
          return true;
        }
        return false;
      }
      if (*p_ == '"') {
        ++p_;
        return true;
      }
      if (!AppendEscape(p_[1], out)) return false;
      p_ += 2;
    }
  }

  bool ReadArray(JsonValue& out, std::size_t depth) {
    if (depth > kMaxJsonDepth) return false;
    ++p_;
    SkipBlanks();
    // The elements gather on the stack shared by all levels and move into a
    // vector of exactly their number at the end, so that an array costs one
    // allocation however long it is.
    const std::size_t base = stack_.size();
    if (p_ < end_ && *p_ == ']') {
      ++p_;
    } else {
      for (;;) {
        // Read aside: the stack may move while the element reads its own.
        JsonValue value = nulls_.Take();
        if (!ReadValue(value, depth + 1)) return false;
        stack_.push_back(std::move(value));
        const int separator = Separator(']');
        if (separator < 0) return false;
        if (separator == 0) break;
      }
    }
    const auto first = stack_.begin() + static_cast<std::ptrdiff_t>(base);
    std::vector<JsonValue> values(std::make_move_iterator(first),
                                  std::make_move_iterator(stack_.end()));
    stack_.erase(first, stack_.end());
    out.SetValue(std::move(values));
    return true;
  }

  bool ReadObject(JsonObject& out, std::size_t depth) {
    if (depth > kMaxJsonDepth) return false;
    ++p_;
    SkipBlanks();
    if (p_ < end_ && *p_ == '}') {
      ++p_;
      return true;
    }
    for (;;) {
      if (p_ == end_ || *p_ != '"') return false;
      std::string name;
      if (!ReadString(name) || name.empty()) return false;
      SkipBlanks();
      if (p_ == end_ || *p_ != ':') return false;
      ++p_;
      SkipBlanks();
      JsonValue value = nulls_.Take();
      if (!ReadValue(value, depth + 1)) return false;
      // Of several properties with the same name the last one wins.
      out.SetProperty(std::move(name), std::move(value));
      const int separator = Separator('}');
      if (separator < 0) return false;
      if (separator == 0) return true;
    }
  }

  const char* p_;
  const char* const end_;
  std::vector<JsonValue> stack_;
  BodilessNulls nulls_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONSTRICTREADER_H_
