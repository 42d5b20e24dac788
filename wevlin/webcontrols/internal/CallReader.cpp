#include "wevlin/webcontrols/internal/CallReader.h"

#include <limits>

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

namespace {

// A cursor over the call's text with the few JSON readers the call needs.
class Cursor {
 public:
  explicit Cursor(std::string_view text) : text_(text) {}

  bool AtEnd() const { return at_ >= text_.size(); }

  char Peek() const { return text_[at_]; }

  void SkipSpace() {
    while (!AtEnd() && (Peek() == ' ' || Peek() == '\t' || Peek() == '\n' || Peek() == '\r')) {
      ++at_;
    }
  }

  // Consumes `c` after optional space; returns whether it was there.
  bool Take(char c) {
    SkipSpace();
    if (AtEnd() || Peek() != c) return false;
    ++at_;
    return true;
  }

  // Reads a JSON string into `out` (null: checks and skips it).
  bool ReadString(std::string* out) {
    SkipSpace();
    if (AtEnd() || Peek() != '"') return false;
    ++at_;
    const std::size_t start = at_;
    // The decoded text is never longer than its JSON form.
    std::size_t end = start;
    while (end < text_.size() && text_[end] != '"') end += text_[end] == '\\' ? 2 : 1;
    if (end >= text_.size()) return false;
    if (out != nullptr) {
      out->clear();
      out->reserve(end - start);
    }
    while (at_ < end) {
      const char c = text_[at_];
      if (static_cast<unsigned char>(c) < 0x20) return false;
      if (c != '\\') {
        // Copies the run of plain characters up to the next escape at once.
        std::size_t run = at_;
        while (run < end && text_[run] != '\\' && static_cast<unsigned char>(text_[run]) >= 0x20) {
          ++run;
        }
        if (out != nullptr) out->append(text_.data() + at_, run - at_);
        at_ = run;
        continue;
      }
      ++at_;
      const char escape = text_[at_++];
      char plain = 0;
      switch (escape) {
        case '"':
          plain = '"';
          break;
        case '\\':
          plain = '\\';
          break;
        case '/':
          plain = '/';
          break;
        case 'b':
          plain = '\b';
          break;
        case 'f':
          plain = '\f';
          break;
        case 'n':
          plain = '\n';
          break;
        case 'r':
          plain = '\r';
          break;
        case 't':
          plain = '\t';
          break;
        case 'u': {
          std::uint32_t unit = 0;
          if (!ReadHex4(unit)) return false;
          std::uint32_t code = unit;
          if (unit >= 0xD800 && unit <= 0xDBFF) {
            std::uint32_t low = 0;
            const std::size_t before = at_;
            if (at_ + 1 < text_.size() && text_[at_] == '\\' && text_[at_ + 1] == 'u') {
              at_ += 2;
              if (!ReadHex4(low)) return false;
            }
            if (low >= 0xDC00 && low <= 0xDFFF) {
              code = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
            } else {
              at_ = before;
              code = 0xFFFD;  // a lone high surrogate
            }
          } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
            code = 0xFFFD;  // a lone low surrogate
          }
          if (out != nullptr) AppendUtf8(*out, code);
          continue;
        }
        default:
          return false;
      }
      if (out != nullptr) out->push_back(plain);
    }
    ++at_;  // the closing quote
    return true;
  }

  // Reads a JSON number into `isInteger` and, when it is an integer of 64
  // bits, `value`. Returns false when the text is no number.
  bool ReadNumber(std::int64_t& value, bool& isInteger) {
    SkipSpace();
    const std::size_t start = at_;
    if (!SkipNumber()) return false;
    std::string_view number = text_.substr(start, at_ - start);
    isInteger = false;
    const bool negative = number.front() == '-';
    if (negative) number.remove_prefix(1);
    std::uint64_t magnitude = 0;
    for (const char c : number) {
      if (c < '0' || c > '9') return true;  // a fraction or an exponent
      const auto digit = static_cast<std::uint64_t>(c - '0');
      if (magnitude > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) return true;
      magnitude = magnitude * 10 + digit;
    }
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) + (negative ? 1 : 0);
    if (magnitude > limit) return true;
    value =
        negative ? static_cast<std::int64_t>(0 - magnitude) : static_cast<std::int64_t>(magnitude);
    isInteger = true;
    return true;
  }

  // Checks and skips one JSON value of any kind, nested at most `depth` deep.
  bool SkipValue(std::size_t depth) {
    SkipSpace();
    if (AtEnd()) return false;
    const char c = Peek();
    if (c == '"') return ReadString(nullptr);
    if (c == '{' || c == '[') {
      if (depth == 0) return false;
      const char close = c == '{' ? '}' : ']';
      ++at_;
      if (Take(close)) return true;
      do {
        if (c == '{' && (!ReadString(nullptr) || !Take(':'))) return false;
        if (!SkipValue(depth - 1)) return false;
      } while (Take(','));
      return Take(close);
    }
    if (c == 't') return TakeWord("true");
    if (c == 'f') return TakeWord("false");
    if (c == 'n') return TakeWord("null");
    return SkipNumber();
  }

 private:
  bool TakeWord(std::string_view word) {
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    return true;
  }

  // Skips a number of JSON's grammar: -?(0|[1-9][0-9]*)(.[0-9]+)?([eE][+-]?[0-9]+)?
  bool SkipNumber() {
    auto digits = [&] {
      const std::size_t start = at_;
      while (!AtEnd() && Peek() >= '0' && Peek() <= '9') ++at_;
      return at_ - start;
    };
    if (!AtEnd() && Peek() == '-') ++at_;
    if (AtEnd()) return false;
    if (Peek() == '0') {
      ++at_;
    } else if (digits() == 0) {
      return false;
    }
    if (!AtEnd() && Peek() == '.') {
      ++at_;
      if (digits() == 0) return false;
    }
    if (!AtEnd() && (Peek() == 'e' || Peek() == 'E')) {
      ++at_;
      if (!AtEnd() && (Peek() == '+' || Peek() == '-')) ++at_;
      if (digits() == 0) return false;
    }
    return true;
  }

  bool ReadHex4(std::uint32_t& unit) {
    if (at_ + 4 > text_.size()) return false;
    unit = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = text_[at_++];
      unit <<= 4;
      if (c >= '0' && c <= '9') {
        unit |= static_cast<std::uint32_t>(c - '0');
      } else if (c >= 'a' && c <= 'f') {
        unit |= static_cast<std::uint32_t>(c - 'a' + 10);
      } else if (c >= 'A' && c <= 'F') {
        unit |= static_cast<std::uint32_t>(c - 'A' + 10);
      } else {
        return false;
      }
    }
    return true;
  }

  static void AppendUtf8(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
      out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (code >> 6)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (code >> 12)));
      out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (code >> 18)));
      out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

bool CallReader::Read(std::string_view text, std::int64_t& id, std::string& function,
                      std::vector<std::string>& args) {
  Cursor cursor(text);
  bool hasId = false;
  function.clear();
  args.clear();
  if (!cursor.Take('{')) return false;
  if (!cursor.Take('}')) {
    std::string key;
    do {
      if (!cursor.ReadString(&key) || !cursor.Take(':')) return false;
      cursor.SkipSpace();
      if (cursor.AtEnd()) return false;
      const char next = cursor.Peek();
      if (key == "id") {
        // Only a 64-bit integer is an id (not 1.5, 1e3 or "1"); of repeated
        // ids the last counts.
        if (next == '-' || (next >= '0' && next <= '9')) {
          if (!cursor.ReadNumber(id, hasId)) return false;
        } else {
          hasId = false;
          if (!cursor.SkipValue(kMaxDepth)) return false;
        }
      } else if (key == "fn") {
        if (next == '"') {
          if (!cursor.ReadString(&function)) return false;
        } else {
          function.clear();
          if (!cursor.SkipValue(kMaxDepth)) return false;
        }
      } else if (key == "args") {
        args.clear();
        if (next == '[') {
          cursor.Take('[');
          if (!cursor.Take(']')) {
            do {
              cursor.SkipSpace();
              if (cursor.AtEnd()) return false;
              args.emplace_back();
              if (cursor.Peek() == '"') {
                if (!cursor.ReadString(&args.back())) return false;
              } else if (!cursor.SkipValue(kMaxDepth - 1)) {
                return false;
              }
            } while (cursor.Take(','));
            if (!cursor.Take(']')) return false;
          }
        } else if (!cursor.SkipValue(kMaxDepth)) {
          return false;
        }
      } else if (!cursor.SkipValue(kMaxDepth)) {
        return false;
      }
    } while (cursor.Take(','));
    if (!cursor.Take('}')) return false;
  }
  cursor.SkipSpace();
  return cursor.AtEnd() && hasId;
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal
