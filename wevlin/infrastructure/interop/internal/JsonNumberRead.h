#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNUMBERREAD_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNUMBERREAD_H_

// Reading numbers. The stream extraction is the reference; the fast paths
// take only texts whose stream result is beyond doubt and hand everything
// else to the stream. Internal; any thread.
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// Extracts one `T` from `text` with a string stream in the classic locale,
// which is the definition of the number formats: true when it took the
// whole text.
template <typename T>
bool StreamExtract(std::string_view text, T& value) {
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  stream >> value;
  return !stream.fail() && !stream.bad() && stream.eof();
}

// Reads an optional sign followed by decimal digits only. Returns 1 for a
// value, 0 for such a text out of the range of int, and -1 for any other text.
inline int FastInt(std::string_view text, int& value) {
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

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNUMBERREAD_H_
