#include "wevlin/infrastructure/interop/internal/JsonText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {
namespace {

// Appends what the escape "\<escape>" of a string stands for to `out`, and
// returns false for a letter that is no escape. Both string readers share it.
// "\u" stands for nothing: the reader copies its digits as ordinary
// characters.
bool AppendEscape(char escape, std::string& out) {
  switch (escape) {
    case '"':
      out += '"';
      return true;
    case '/':
      out += '/';
      return true;
    case '\\':
      out += '\\';
      return true;
    case 'b':
      out += '\b';
      return true;
    case 'f':
      out += '\f';
      return true;
    case 'n':
      out += '\n';
      return true;
    case 'r':
      out += '\r';
      return true;
    case 't':
      out += '\t';
      return true;
    case 'u':
      return true;
    default:
      return false;
  }
}

using Base::internal::WriteLogLine;

constexpr char kNotAString[] = "JSON data is not a string";
constexpr char kInvalidEscape[] = "Invalid escape character";
constexpr char kNotABoolean[] = "JSON data is not a boolean";
constexpr char kNotAnInteger[] = "JSON data is not an integer";
constexpr char kNotAFloat[] = "JSON data is not a float";
constexpr char kNotADouble[] = "JSON data is not a double";
constexpr char kNotAnArray[] = "JSON data is not an array";
constexpr char kNotAnObject[] = "JSON data is not an object";

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

[[noreturn]] void Fail(const char* message) { throw std::runtime_error(message); }

// isspace in the classic locale: blank, \t, \n, \v, \f, \r.
inline bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// isspace or iscntrl in the classic locale: bytes 0 to 32 and 127.
inline bool IsTrimmed(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= 0x20 || byte == 0x7f;
}

// The second character of the escape that EscapeJsonString writes for each
// byte, or 0 for a byte that is copied unchanged.
constexpr std::array<char, 256> MakeEscapeTable() {
  std::array<char, 256> table{};
  table['\b'] = 'b';
  table['\t'] = 't';
  table['\n'] = 'n';
  table['\f'] = 'f';
  table['\r'] = 'r';
  table['"'] = '"';
  table['/'] = '/';
  table['\\'] = '\\';
  return table;
}
constexpr std::array<char, 256> kEscapeTable = MakeEscapeTable();

// ---------------------------------------------------------------------------
// Number formatting. std::to_chars with an explicit precision formats exactly
// as printf does in the C locale, and never looks at any locale.

void AppendInt(std::string& out, int value) {
  char buffer[16];
  const auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
  out.append(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

#if defined(__SIZEOF_INT128__)
__extension__ using Uint128 = unsigned __int128;

// 5 to the powers 0 to 27 (the largest below 2^63), and 10 to 0 to 19.
constexpr std::array<std::uint64_t, 28> MakePowers(std::uint64_t base) {
  std::array<std::uint64_t, 28> powers{};
  std::uint64_t power = 1;
  for (std::size_t i = 0; i < powers.size(); ++i) {
    powers[i] = power;
    if (i + 1 < powers.size() && power <= ~std::uint64_t{0} / base) power *= base;
  }
  return powers;
}
constexpr std::array<std::uint64_t, 28> kPowersOf5 = MakePowers(5);
constexpr std::array<std::uint64_t, 28> kPowersOf10 = MakePowers(10);
constexpr std::uint64_t kSeventeenDigits = 100000000000000000;  // 10^17

// 10^0 to 10^22: the powers of ten that doubles hold exactly.
constexpr std::array<double, 23> kExactPowersOf10 = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// "00" to "99", for writing digits two at a time.
constexpr std::array<char, 200> MakeDigitPairs() {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}
constexpr std::array<char, 200> kDigitPairs = MakeDigitPairs();

// Sets `digits` to mantissa * 2^exponent * 10^scale rounded to an integer,
// ties to even, exactly. Returns false when the numbers involved do not fit
// in 128 bits (or the result not in 64), which the caller leaves to to_chars.
bool ScaleExactly(std::uint64_t mantissa, int exponent, int scale, std::uint64_t& digits) {
  Uint128 result = 0;
  if (scale >= 0) {
    if (scale > 27) return false;
    const Uint128 product = static_cast<Uint128>(mantissa) * kPowersOf5[scale];
    const int shift = exponent + scale;  // the remaining power of two
    if (shift >= 0) {
      if (shift > 10) return false;
      result = product << shift;
    } else {
      if (shift < -120) return false;
      const int right = -shift;
      result = product >> right;
      const Uint128 rest = product - (result << right);
      const Uint128 half = static_cast<Uint128>(1) << (right - 1);
      if (rest > half || (rest == half && (result & 1) != 0)) ++result;
    }
  } else {
    const int divisorPower = -scale;
    if (divisorPower > 19 || exponent < 0 || exponent > 70) return false;
    const Uint128 number = static_cast<Uint128>(mantissa) << exponent;
    const std::uint64_t divisor = kPowersOf10[divisorPower];
    result = number / divisor;
    const Uint128 rest = number - result * divisor;
    if (2 * rest > divisor || (2 * rest == divisor && (result & 1) != 0)) ++result;
  }
  if (result > ~std::uint64_t{0}) return false;
  digits = static_cast<std::uint64_t>(result);
  return true;
}

// Writes the finite, non-zero, normal `value` as "%.17g" writes it (exactly
// as std::to_chars with general format and precision 17, ties to even) and
// returns the end of the text; `out` has room for 32 characters. Returns
// null for the values it leaves to to_chars (magnitudes far from 1).
//
// The seventeen digits are the exact value scaled by a power of ten and
// rounded once, in 128-bit integers; the text follows %g: plain notation for
// decimal exponents from -4 to 16, scientific otherwise, trailing zeros and
// a bare point dropped.
char* WriteSeventeenDigits(char* out, double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(bits));
  const int biased = static_cast<int>((bits >> 52) & 0x7ff);
  if (biased == 0 || biased == 0x7ff) return nullptr;
  const std::uint64_t mantissa = (bits & ((std::uint64_t{1} << 52) - 1)) | (std::uint64_t{1} << 52);
  const int exponent = biased - 1075;
  // The decimal exponent of the first digit: log10 of 2^(exponent + 52)
  // rounded down (78913 / 2^18 is log10(2) closely enough for every binary
  // exponent of a double), or one more; the loop corrects the guess.
  int decimalExponent = ((exponent + 52) * 78913) >> 18;
  // The value lies in [2^(exponent + 52), 2^(exponent + 53)), so its decimal
  // exponent is the guess or one more. Where the power of ten in between is
  // exact as a double, comparing with it settles which, so that the value is
  // scaled once. Elsewhere the loop corrects the guess, which it can only do
  // upwards: a value just below a power of ten may round up to it.
  if (decimalExponent >= -1 && decimalExponent < 22 &&
      std::fabs(value) >= kExactPowersOf10[static_cast<std::size_t>(decimalExponent + 1)]) {
    ++decimalExponent;
  }
  std::uint64_t digits = 0;
  for (int attempt = 0;; ++attempt) {
    if (attempt == 3 || !ScaleExactly(mantissa, exponent, 16 - decimalExponent, digits)) {
      return nullptr;
    }
    if (digits >= kSeventeenDigits) {
      ++decimalExponent;
    } else if (digits < kSeventeenDigits / 10) {
      --decimalExponent;
    } else {
      break;
    }
  }
  // The seventeen digits, two at a time: nine from the high part, eight
  // from the low one.
  char text[18];
  auto high = static_cast<std::uint32_t>(digits / 100000000);
  auto low = static_cast<std::uint32_t>(digits % 100000000);
  for (int i = 16; i > 8; i -= 2) {
    std::memcpy(text + i - 1, &kDigitPairs[2 * std::size_t{low % 100}], 2);
    low /= 100;
  }
  for (int i = 8; i > 0; i -= 2) {
    std::memcpy(text + i - 1, &kDigitPairs[2 * std::size_t{high % 100}], 2);
    high /= 100;
  }
  text[0] = static_cast<char>('0' + high);
  int length = 17;
  while (length > 1 && text[length - 1] == '0') --length;

  char* p = out;
  if ((bits >> 63) != 0) *p++ = '-';
  if (decimalExponent < -4 || decimalExponent >= 17) {
    *p++ = text[0];
    if (length > 1) {
      *p++ = '.';
      std::memcpy(p, text + 1, static_cast<std::size_t>(length - 1));
      p += length - 1;
    }
    *p++ = 'e';
    *p++ = decimalExponent < 0 ? '-' : '+';
    const int magnitude = decimalExponent < 0 ? -decimalExponent : decimalExponent;
    if (magnitude >= 100) *p++ = static_cast<char>('0' + magnitude / 100);
    *p++ = static_cast<char>('0' + magnitude / 10 % 10);
    *p++ = static_cast<char>('0' + magnitude % 10);
  } else if (decimalExponent >= 0) {
    const int whole = decimalExponent + 1;
    std::memcpy(p, text, static_cast<std::size_t>(whole));
    p += whole;
    if (length > whole) {
      *p++ = '.';
      std::memcpy(p, text + whole, static_cast<std::size_t>(length - whole));
      p += length - whole;
    }
  } else {
    *p++ = '0';
    *p++ = '.';
    for (int zeros = -decimalExponent - 1; zeros > 0; --zeros) *p++ = '0';
    std::memcpy(p, text, static_cast<std::size_t>(length));
    p += length;
  }
  return p;
}
#else
char* WriteSeventeenDigits(char* /*out*/, double /*value*/) { return nullptr; }
#endif

// Writes the finite `value` with `precision` significant digits in general
// notation, as "%.<precision>g" does, into `out`, which has room for 32
// characters, and returns the end of the text.
char* WriteGeneral(char* out, double value, int precision) {
  if (precision == 17 && value != 0.0) {
    char* end = WriteSeventeenDigits(out, value);
    if (end != nullptr) return end;
  }
  return std::to_chars(out, out + 32, value, std::chars_format::general, precision).ptr;
}

void AppendGeneral(std::string& out, double value, int precision) {
  if (!std::isfinite(value)) {
    // The C runtimes spell infinity and NaN differently (a negative NaN is
    // "-nan" with glibc but "nan" with Windows' runtime), and to_chars follows
    // none of them: ask the stream itself. Rare, so its cost does not matter.
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(precision);
    stream << value;
    out += stream.str();
    return;
  }
  char buffer[32];
  out.append(buffer, static_cast<std::size_t>(WriteGeneral(buffer, value, precision) - buffer));
}

// ---------------------------------------------------------------------------
// Number reading. The stream extraction is the reference; the fast paths take
// only texts whose stream result is beyond doubt and hand everything else to
// the stream.

template <typename T>
bool StreamExtract(std::string_view text, T& value) {
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  stream >> value;
  return !stream.fail() && !stream.bad() && stream.eof();
}

// Reads an optional sign followed by decimal digits only. Returns 1 for a
// value, 0 for such a text out of the range of int, and -1 for any other text.
int FastInt(std::string_view text, int& value) {
  const char* p = text.data();
  const char* end = p + text.size();
  bool negative = false;
  if (p < end && (*p == '+' || *p == '-')) {
    negative = *p == '-';
    ++p;
  }
  if (p == end) return -1;
  const std::int64_t limit = negative ? std::int64_t{2147483648} : std::int64_t{2147483647};
  std::int64_t magnitude = 0;
  bool overflow = false;
  for (; p < end; ++p) {
    const char c = *p;
    if (c < '0' || c > '9') return -1;
    if (!overflow) {
      magnitude = magnitude * 10 + (c - '0');
      overflow = magnitude > limit;
    }
  }
  if (overflow) return 0;
  value = static_cast<int>(negative ? -magnitude : magnitude);
  return 1;
}

// Reads an optional sign, decimal digits and at most one decimal point, with
// at least one digit and at most `maxLength` characters after the sign (short
// enough that the value can neither overflow nor underflow the type).
// Returns false for any other text, leaving the stream to decide.
template <typename T>
bool FastFloating(std::string_view text, std::size_t maxLength, T& value) {
  const char* first = text.data();
  const char* end = first + text.size();
  const char* p = first;
  if (p < end && (*p == '+' || *p == '-')) ++p;
  if (p == end || static_cast<std::size_t>(end - p) > maxLength) return false;
  bool digit = false;
  bool point = false;
  for (const char* q = p; q < end; ++q) {
    if (*q >= '0' && *q <= '9') {
      digit = true;
    } else if (*q == '.' && !point) {
      point = true;
    } else {
      return false;
    }
  }
  if (!digit) return false;
  // std::from_chars takes a minus sign but no plus sign.
  if (*first == '+') ++first;
  T parsed{};
  const auto result = std::from_chars(first, end, parsed, std::chars_format::general);
  if (result.ec != std::errc() || result.ptr != end) return false;
  value = parsed;
  return true;
}

// ---------------------------------------------------------------------------
// Skipping quoted strings and nested arrays and objects.

// Moves `p` from an opening double quote to just past the matching unescaped
// double quote (a backslash escapes the byte after it). Returns false, leaving
// `p` alone, if the text ends first.
bool SkipQuoted(const char*& p, const char* end) {
  const char* const contentStart = p + 1;
  const char* q = contentStart;
  while (q < end) {
    const void* hit = std::memchr(q, '"', static_cast<std::size_t>(end - q));
    if (hit == nullptr) return false;
    const char* quote = static_cast<const char*>(hit);
    // The quote is escaped when an odd run of backslashes stands before it.
    const char* run = quote;
    while (run > contentStart && run[-1] == '\\') --run;
    if (((quote - run) & 1) == 0) {
      p = quote + 1;
      return true;
    }
    q = quote + 1;
  }
  return false;
}

// A stack of the kinds (array or object) of the nested structures still open,
// one bit each, without heap use for the first 256 levels.
class OpenStack {
 public:
  void Push(bool object) {
    const std::size_t word = size_ / 64;
    if (word >= kInlineWords && word - kInlineWords == spill_.size()) spill_.push_back(0);
    const std::uint64_t bit = std::uint64_t{1} << (size_ % 64);
    std::uint64_t& bits = Word(word);
    bits = object ? (bits | bit) : (bits & ~bit);
    ++size_;
  }
  void Pop() { --size_; }
  bool TopIsObject() {
    const std::size_t top = size_ - 1;
    return ((Word(top / 64) >> (top % 64)) & 1) != 0;
  }
  std::size_t Size() const { return size_; }

 private:
  static constexpr std::size_t kInlineWords = 4;
  std::uint64_t& Word(std::size_t index) {
    return index < kInlineWords ? inline_[index] : spill_[index - kInlineWords];
  }
  std::uint64_t inline_[kInlineWords] = {};
  std::vector<std::uint64_t> spill_;
  std::size_t size_ = 0;
};

// Where one nested array or object of a text starts and ends, recorded when a
// reading first skips over it so that the readings of the levels inside it
// skip their own nested structures without scanning them again.
struct Nest {
  const char* open;   // the "[" or "{"
  const char* after;  // just past the closer; null while (or if never) closed
  std::size_t next;   // index of the first record after this one's subtree
};

// The records of one reading, in the order of their opening characters, so
// that the records inside a structure directly follow its own record.
struct NestIndex {
  std::vector<Nest> nests;
  std::vector<std::size_t> open;  // scratch: records still open during a skip
};

// Skips the array or object at `p` (an opening "[" or "{" before `end`),
// with the results and lines of EndOfArray and EndOfObject. With `index`,
// records every structure met whose depth is at most kMaxJsonDepth + 1, the
// one at `p` being at `depth`, and sets `first` to the record of the one at
// `p`.
bool SkipNested(const char*& p, const char* end, NestIndex* index, std::size_t depth,
                std::size_t& first) {
  OpenStack stack;
  first = kNone;
  if (index != nullptr) index->open.clear();
  const char* q = p;
  for (;;) {
    // `q` is on an opening character.
    const bool object = *q == '{';
    stack.Push(object);
    if (index != nullptr && depth + stack.Size() - 1 <= kMaxJsonDepth + 1) {
      const std::size_t record = index->nests.size();
      index->nests.push_back(Nest{q, nullptr, 0});
      index->open.push_back(record);
      if (first == kNone) first = record;
    }
    ++q;
    char closer = object ? '}' : ']';
    for (;;) {
      if (q == end) {
        WriteLogLine(closer == '}' ? "EndOfObject: final character incorrect"
                                   : "EndOfArray: final character incorrect");
        p = end;
        return false;
      }
      const char c = *q;
      if (c == closer) {
        if (index != nullptr && depth + stack.Size() - 1 <= kMaxJsonDepth + 1) {
          Nest& nest = index->nests[index->open.back()];
          nest.after = q + 1;
          nest.next = index->nests.size();
          index->open.pop_back();
        }
        stack.Pop();
        ++q;
        if (stack.Size() == 0) {
          p = q;
          return true;
        }
        closer = stack.TopIsObject() ? '}' : ']';
      } else if (c == '"') {
        if (!SkipQuoted(q, end)) {
          p = end;
          return false;
        }
      } else if (c == '[' || c == '{') {
        break;
      } else {
        ++q;
      }
    }
  }
}

// How the cutting of one array or object skips its nested structures: by the
// records of an earlier skip (while they match), or by scanning.
struct NestCursor {
  NestIndex* index;   // null: scan without recording
  std::size_t next;   // the record expected for the next nested structure, or kNone
  std::size_t depth;  // depth of the structures nested directly in this one
};

NestCursor ScanningCursor() { return NestCursor{nullptr, kNone, 0}; }

// Skips the nested array or object at `p`, setting `nest` to its record.
bool SkipChild(const char*& p, const char* end, NestCursor& cursor, std::size_t& nest) {
  if (cursor.next != kNone) {
    const std::vector<Nest>& nests = cursor.index->nests;
    if (cursor.next < nests.size()) {
      const Nest& recorded = nests[cursor.next];
      if (recorded.open == p && recorded.after != nullptr && recorded.after <= end) {
        nest = cursor.next;
        p = recorded.after;
        cursor.next = recorded.next;
        return true;
      }
    }
    // Not as recorded: scan the rest of this level.
    cursor.next = kNone;
  }
  return SkipNested(p, end, cursor.index, cursor.depth, nest);
}

// ---------------------------------------------------------------------------
// Cutting arrays and objects into raw element texts. `text` is trimmed and
// starts with the opening character. The sink receives each element as
// (begin, end, record of the first structure nested in it or kNone); for
// objects, preceded by the name.

template <typename Sink>
bool CutArray(std::string_view text, NestCursor& cursor, Sink&& sink) {
  const char* p = text.data() + 1;
  const char* const end = text.data() + text.size();
  if (p == end) Fail(kNotAnArray);
  const char* start = nullptr;
  std::size_t startNest = kNone;
  while (p < end) {
    const char c = *p;
    switch (c) {
      case ',':
        if (start != nullptr) {
          sink(start, p, startNest);
          start = nullptr;
        }
        ++p;
        break;
      case ']':
        if (start != nullptr) sink(start, p, startNest);
        return true;
      case '"':
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        if (!SkipQuoted(p, end)) return false;
        break;
      case '[':
      case '{': {
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        std::size_t nest = kNone;
        if (!SkipChild(p, end, cursor, nest)) return false;
        if (startNest == kNone) startNest = nest;
        break;
      }
      default:
        if (start == nullptr && !IsSpace(c)) {
          start = p;
          startNest = kNone;
        }
        ++p;
        break;
    }
  }
  Fail(kNotAnArray);
}

template <typename Sink>
bool CutObject(std::string_view text, NestCursor& cursor, Sink&& sink) {
  const char* p = text.data() + 1;
  const char* const end = text.data() + text.size();
  const char* start = nullptr;
  std::size_t startNest = kNone;
  std::string name;  // the pending name; empty counts as none
  while (p < end) {
    const char c = *p;
    switch (c) {
      case ':': {
        if (start == nullptr) return false;
        const std::string_view token(start, static_cast<std::size_t>(p - start));
        if (!ReadJsonStringView(token, name)) {
          WriteLogLine("ParseObject: rejecting property name " + std::string(token));
          return false;
        }
        start = nullptr;
        ++p;
        break;
      }
      case ',':
        if (start == nullptr || name.empty()) return false;
        sink(std::move(name), start, p, startNest);
        name.clear();
        start = nullptr;
        ++p;
        break;
      case '}':
        if (name.empty()) return start == nullptr;
        if (start == nullptr) return false;
        sink(std::move(name), start, p, startNest);
        return true;
      case '[':
      case '{': {
        if (name.empty()) return false;
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        std::size_t nest = kNone;
        if (!SkipChild(p, end, cursor, nest)) return false;
        if (startNest == kNone) startNest = nest;
        break;
      }
      case '"':
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        if (!SkipQuoted(p, end)) return false;
        break;
      default:
        if (start == nullptr && !IsSpace(c)) {
          start = p;
          startNest = kNone;
        }
        ++p;
        break;
    }
  }
  Fail(kNotAnObject);
}

// ---------------------------------------------------------------------------
// Null values without a body of their own: the state a value is left in when
// it is moved from. A reader reads each element or property into such a value,
// so that the value gets only the body of the kind read (a null costs
// nothing), instead of a Null body first that a setter then replaces.
class BodilessNulls {
 public:
  BodilessNulls() { JsonValue taken(std::move(spent_)); }

  // Returns a Null value that holds no body of its own.
  JsonValue Take() noexcept { return JsonValue(std::move(spent_)); }

 private:
  JsonValue spent_;  // always moved from
};

// ---------------------------------------------------------------------------
// Reading values. One Reader serves one top-level reading: it keeps the
// records of nested structures and, as stacks shared by all levels, the
// element texts and properties cut but not yet read.

struct Slice {
  const char* begin;
  const char* end;
  std::size_t nest;  // record of the first structure nested in the slice, or kNone
};

struct Property {
  std::string name;
  Slice value{};
  std::size_t order = 0;  // position in the text, so that the last duplicate wins
};

class Reader {
 public:
  // Reads `raw` into `out`, which is Null. `depth` is the depth the value has
  // if it is an array or object.
  bool ReadValue(const Slice& raw, JsonValue& out, std::size_t depth) {
    const std::string_view text = TrimJsonTextView(
        std::string_view(raw.begin, static_cast<std::size_t>(raw.end - raw.begin)));
    switch (text.empty() ? '\0' : text.front()) {
      case '"': {
        std::string value;
        ReadJsonStringView(text, value);
        out.SetValue(std::move(value));
        return true;
      }
      case '[':
        return ReadArray(text, raw.nest, depth, out);
      case 't':
      case 'f': {
        bool value = false;
        ReadJsonBoolView(text, value);
        out.SetValue(value);
        return true;
      }
      case 'n':
        return text == "null";
      case '{': {
        JsonObject object;
        if (!ReadObject(text, raw.nest, depth, object)) return false;
        out.SetValue(std::move(object));
        return true;
      }
      default:
        if (text.find('.') != std::string_view::npos) {
          double value = 0.0;
          ReadJsonDoubleView(text, value);
          out.SetValue(value);
        } else {
          int value = 0;
          ReadJsonIntView(text, value);
          out.SetValue(value);
        }
        return true;
    }
  }

  // Reads the object `text` (trimmed, starting with "{") into `out`, which is
  // replaced only on success.
  bool ReadObject(std::string_view text, std::size_t nest, std::size_t depth, JsonObject& out) {
    if (depth > kMaxJsonDepth) return false;
    NestCursor cursor = CursorFor(text.data(), nest, depth);
    const std::size_t base = properties_.size();
    std::size_t order = 0;
    const bool cut =
        CutObject(text, cursor,
                  [this, &order](std::string&& name, const char* b, const char* e, std::size_t n) {
                    properties_.push_back(Property{std::move(name), Slice{b, e, n}, order++});
                  });
    if (!cut) return false;
    // Values are read in ascending name order; of equal names the last wins.
    std::sort(properties_.begin() + static_cast<std::ptrdiff_t>(base), properties_.end(),
              [](const Property& a, const Property& b) {
                const int compared = a.name.compare(b.name);
                return compared < 0 || (compared == 0 && a.order < b.order);
              });
    JsonObject result;
    const std::size_t top = properties_.size();
    for (std::size_t i = base; i < top; ++i) {
      if (i + 1 < top && properties_[i + 1].name == properties_[i].name) continue;
      JsonValue value = nulls_.Take();
      const Slice slice = properties_[i].value;
      if (!ReadValue(slice, value, depth + 1)) return false;
      result.SetProperty(std::move(properties_[i].name), std::move(value));
    }
    properties_.resize(base);
    out = std::move(result);
    return true;
  }

 private:
  bool ReadArray(std::string_view text, std::size_t nest, std::size_t depth, JsonValue& out) {
    if (depth > kMaxJsonDepth) return false;
    NestCursor cursor = CursorFor(text.data(), nest, depth);
    const std::size_t base = elements_.size();
    const bool cut = CutArray(text, cursor, [this](const char* b, const char* e, std::size_t n) {
      elements_.push_back(Slice{b, e, n});
    });
    if (!cut) return false;
    std::vector<JsonValue> values;
    values.reserve(elements_.size() - base);
    for (std::size_t i = base; i < elements_.size(); ++i) {
      values.push_back(nulls_.Take());
      const Slice slice = elements_[i];
      if (!ReadValue(slice, values.back(), depth + 1)) return false;
    }
    elements_.resize(base);
    out.SetValue(std::move(values));
    return true;
  }

  // Returns the cursor for cutting the structure that opens at `open`: by the
  // records when `nest` is its record, else scanning and recording.
  NestCursor CursorFor(const char* open, std::size_t nest, std::size_t depth) {
    if (nest != kNone && nest < index_.nests.size() && index_.nests[nest].open == open &&
        index_.nests[nest].after != nullptr) {
      return NestCursor{&index_, nest + 1, depth + 1};
    }
    return NestCursor{&index_, kNone, depth + 1};
  }

  NestIndex index_;
  std::vector<Slice> elements_;
  std::vector<Property> properties_;
  BodilessNulls nulls_;
};

// ---------------------------------------------------------------------------
// The one-pass reader. Reader above cuts every array and object into raw
// element texts and reads each again, which is what gives the format its
// leniencies; on the texts that standard JSON writers produce, those cuts
// always fall exactly at the tokens. StrictReader reads such texts in one
// pass straight into the values, and declines everything else, so that
// Reader reads it (and produces the results, false values and exceptions of
// the format).
//
// It accepts the standard grammar with these limits, each chosen so that an
// accepted text reads to exactly the value Reader builds:
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
// As in Reader, text after the closing bracket, brace or quote of the
// outermost value is not looked at.
class StrictReader {
 public:
  // `text` is trimmed and not empty.
  explicit StrictReader(std::string_view text) : p_(text.data()), end_(text.data() + text.size()) {}

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

}  // namespace

// ---------------------------------------------------------------------------

std::string_view TrimJsonTextView(std::string_view text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && IsTrimmed(text[begin])) ++begin;
  while (end > begin && IsTrimmed(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

std::string TrimJsonText(const std::string& text) { return std::string(TrimJsonTextView(text)); }

namespace {

// Appends `text` to `out` with the escapes of EscapeJsonString.
void AppendEscaped(std::string& out, std::string_view text) {
  const char* run = text.data();
  const char* const end = run + text.size();
  for (const char* p = run; p < end; ++p) {
    const char escape = kEscapeTable[static_cast<unsigned char>(*p)];
    if (escape != 0) {
      out.append(run, static_cast<std::size_t>(p - run));
      out += '\\';
      out += escape;
      run = p + 1;
    }
  }
  out.append(run, static_cast<std::size_t>(end - run));
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
  out.reserve(out.size() + text.size() + 2);
  out += '"';
  AppendEscaped(out, text);
  out += '"';
}

std::string EscapeJsonString(const std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  AppendEscaped(escaped, text);
  return escaped;
}

std::string FormatJsonString(const std::string& text) {
  std::string quoted;
  AppendJsonString(quoted, text);
  return quoted;
}

std::string FormatInt(int value) {
  std::string text;
  AppendInt(text, value);
  return text;
}

std::string FormatFloat(float value) {
  std::string text;
  AppendGeneral(text, static_cast<double>(value), 6);
  return text;
}

std::string FormatDouble(double value) {
  std::string text;
  AppendGeneral(text, value, 17);
  return text;
}

std::string FormatBool(bool value) { return value ? "true" : "false"; }

bool ReadJsonStringView(std::string_view text, std::string& out) {
  out.clear();
  text = TrimJsonTextView(text);
  if (text.empty() || text.front() != '"') Fail(kNotAString);
  const char* p = text.data() + 1;
  const char* const end = text.data() + text.size();
  for (;;) {
    const char* run = p;
    while (p < end && *p != '"' && *p != '\\') ++p;
    out.append(run, static_cast<std::size_t>(p - run));
    if (p == end) Fail(kNotAString);
    if (*p == '"') return true;
    // A backslash: decode the escape after it.
    if (p + 1 == end) Fail(kNotAString);
    if (!AppendEscape(p[1], out)) Fail(kInvalidEscape);
    p += 2;
  }
}

bool ReadJsonString(const std::string& text, std::string& out) {
  return ReadJsonStringView(text, out);
}

bool ReadJsonBoolView(std::string_view text, bool& out) {
  text = TrimJsonTextView(text);
  if (text == "true") {
    out = true;
  } else if (text == "false") {
    out = false;
  } else {
    Fail(kNotABoolean);
  }
  return true;
}

bool ReadJsonBool(const std::string& text, bool& out) { return ReadJsonBoolView(text, out); }

bool ReadJsonIntView(std::string_view text, int& out) {
  text = TrimJsonTextView(text);
  int value = 0;
  const int fast = FastInt(text, value);
  if (fast == 0 || (fast < 0 && !StreamExtract(text, value))) Fail(kNotAnInteger);
  out = value;
  return true;
}

bool ReadJsonInt(const std::string& text, int& out) { return ReadJsonIntView(text, out); }

bool ReadJsonFloatView(std::string_view text, float& out) {
  text = TrimJsonTextView(text);
  float value = 0.0F;
  if (!FastFloating(text, 30, value) && !StreamExtract(text, value)) Fail(kNotAFloat);
  out = value;
  return true;
}

bool ReadJsonFloat(const std::string& text, float& out) { return ReadJsonFloatView(text, out); }

bool ReadJsonDoubleView(std::string_view text, double& out) {
  text = TrimJsonTextView(text);
  double value = 0.0;
  if (!FastFloating(text, 250, value) && !StreamExtract(text, value)) Fail(kNotADouble);
  out = value;
  return true;
}

bool ReadJsonDouble(const std::string& text, double& out) { return ReadJsonDoubleView(text, out); }

bool ParseArray(const std::string& text, std::vector<std::string>& out) {
  out.clear();
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '[') Fail(kNotAnArray);
  NestCursor cursor = ScanningCursor();
  return CutArray(trimmed, cursor,
                  [&out](const char* b, const char* e, std::size_t) { out.emplace_back(b, e); });
}

bool ParseArrayView(std::string_view text, std::vector<std::string_view>& out) {
  out.clear();
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '[') Fail(kNotAnArray);
  NestCursor cursor = ScanningCursor();
  return CutArray(trimmed, cursor, [&out](const char* b, const char* e, std::size_t) {
    out.emplace_back(b, static_cast<std::size_t>(e - b));
  });
}

bool ParseObject(const std::string& text, std::map<std::string, std::string>& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '{') Fail(kNotAnObject);
  out.clear();
  NestCursor cursor = ScanningCursor();
  return CutObject(trimmed, cursor,
                   [&out](std::string&& name, const char* b, const char* e, std::size_t) {
                     out.insert_or_assign(std::move(name), std::string(b, e));
                   });
}

bool ParseObjectView(std::string_view text, std::vector<RawProperty>& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '{') Fail(kNotAnObject);
  out.clear();
  NestCursor cursor = ScanningCursor();
  return CutObject(
      trimmed, cursor, [&out](std::string&& name, const char* b, const char* e, std::size_t) {
        out.push_back(
            RawProperty{std::move(name), std::string_view(b, static_cast<std::size_t>(e - b))});
      });
}

bool EndOfArray(const char*& cursor, const char* end) {
  if (!(cursor < end) || *cursor != '[') {
    WriteLogLine("EndOfArray: initial character incorrect");
    return false;
  }
  std::size_t unused = kNone;
  return SkipNested(cursor, end, nullptr, 0, unused);
}

bool EndOfObject(const char*& cursor, const char* end) {
  if (!(cursor < end) || *cursor != '{') {
    WriteLogLine("EndOfObject: initial character incorrect");
    return false;
  }
  std::size_t unused = kNone;
  return SkipNested(cursor, end, nullptr, 0, unused);
}

bool ReadJsonValue(std::string_view text, JsonValue& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (!trimmed.empty()) {
    JsonValue result;
    bool read = false;
    try {
      read = StrictReader(trimmed).ReadTop(result);
    } catch (...) {
      // Only a failed allocation gets here; the value ends Null as after any
      // exception.
      out.Clear();
      throw;
    }
    if (read) {
      out = std::move(result);
      return true;
    }
  }
  return ReadJsonValueGeneral(text, out);
}

bool ReadJsonObject(std::string_view text, JsonObject& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (!trimmed.empty() && trimmed.front() == '{') {
    JsonObject result;
    if (StrictReader(trimmed).ReadTopObject(result)) {
      out = std::move(result);
      return true;
    }
  }
  return ReadJsonObjectGeneral(text, out);
}

bool ReadJsonValueGeneral(std::string_view text, JsonValue& out) {
  // Read aside, so that `text` may even lie inside `out`; `out` ends Null
  // after a false result or an exception.
  struct ClearOnFailure {
    JsonValue* value;
    ~ClearOnFailure() {
      if (value != nullptr) value->Clear();
    }
  } guard{&out};
  JsonValue result;
  Reader reader;
  if (!reader.ReadValue(Slice{text.data(), text.data() + text.size(), kNone}, result, 1)) {
    return false;
  }
  guard.value = nullptr;
  out = std::move(result);
  return true;
}

bool ReadJsonObjectGeneral(std::string_view text, JsonObject& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '{') Fail(kNotAnObject);
  Reader reader;
  return reader.ReadObject(trimmed, kNone, 1, out);
}

namespace {

// Writes values and objects straight into the character buffer of a string:
// the string is lengthened a little ahead of the cursor and the text is stored
// through the cursor, with no per-token call into the string. The destructor
// cuts the string to what was written.
class Writer {
 public:
  // The cursor starts at the end of the text already in `out`, with no room
  // reserved yet, so that it always points into the string.
  explicit Writer(std::string& out) : out_(out), p_(out.data() + out.size()), end_(p_) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { out_.resize(static_cast<std::size_t>(p_ - out_.data())); }

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

}  // namespace

void AppendJsonObject(std::string& out, const JsonObject& object) { Writer(out).Object(object); }

void AppendJsonValue(std::string& out, const JsonValue& value) { Writer(out).Value(value); }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
