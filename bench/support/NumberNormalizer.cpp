#include "support/NumberNormalizer.h"

#include <cstddef>
#include <cstdlib>

namespace wevlin_bench {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Writes the decimal `digits` (no sign, no point) whose point stands after
// `pointPosition` of them (negative: before them, with zeros in between) as a
// plain decimal with at least one digit on each side of the point.
std::string PlainDecimal(const std::string& digits, long pointPosition) {
  std::string integerPart;
  std::string fraction;
  const long count = static_cast<long>(digits.size());
  if (pointPosition <= 0) {
    integerPart = "0";
    fraction = std::string(static_cast<std::size_t>(-pointPosition), '0') + digits;
  } else if (pointPosition >= count) {
    integerPart = digits + std::string(static_cast<std::size_t>(pointPosition - count), '0');
  } else {
    integerPart = digits.substr(0, static_cast<std::size_t>(pointPosition));
    fraction = digits.substr(static_cast<std::size_t>(pointPosition));
  }
  const std::size_t firstNonZero = integerPart.find_first_not_of('0');
  integerPart = firstNonZero == std::string::npos ? "0" : integerPart.substr(firstNonZero);
  if (fraction.empty()) fraction = "0";
  return integerPart + "." + fraction;
}

// Returns the rewritten form of one number token.
std::string NormalizeNumber(const std::string& token) {
  std::size_t p = 0;
  std::string sign;
  if (token[p] == '-') {
    sign = "-";
    ++p;
  }
  std::string integerDigits;
  while (p < token.size() && IsDigit(token[p])) integerDigits += token[p++];
  std::string fractionDigits;
  bool point = false;
  if (p < token.size() && token[p] == '.') {
    point = true;
    ++p;
    while (p < token.size() && IsDigit(token[p])) fractionDigits += token[p++];
  }
  if (p < token.size() && (token[p] == 'e' || token[p] == 'E')) {
    const long exponent = std::strtol(token.c_str() + p + 1, nullptr, 10);
    const std::string digits = integerDigits + fractionDigits;
    return sign + PlainDecimal(digits, static_cast<long>(integerDigits.size()) + exponent);
  }
  if (point) return token;
  // An integer: keep it when it fits in 32 bits.
  const std::size_t firstNonZero = integerDigits.find_first_not_of('0');
  const std::string significant =
      firstNonZero == std::string::npos ? std::string("0") : integerDigits.substr(firstNonZero);
  const std::string limit = sign.empty() ? "2147483647" : "2147483648";
  const bool fits = significant.size() < limit.size() ||
                    (significant.size() == limit.size() && significant <= limit);
  return fits ? token : token + ".0";
}

}  // namespace

std::string NumberNormalizer::Normalize(const std::string& json) {
  std::string out;
  out.reserve(json.size() + json.size() / 16);
  std::size_t i = 0;
  while (i < json.size()) {
    const char c = json[i];
    if (c == '"') {
      // Copy a string whole, escapes included.
      const std::size_t start = i++;
      while (i < json.size() && json[i] != '"') i += json[i] == '\\' ? 2 : 1;
      i = i < json.size() ? i + 1 : json.size();
      out.append(json, start, i - start);
    } else if (c == '-' || IsDigit(c)) {
      const std::size_t start = i++;
      while (i < json.size() && (IsDigit(json[i]) || json[i] == '.' || json[i] == 'e' ||
                                 json[i] == 'E' || json[i] == '+' || json[i] == '-')) {
        ++i;
      }
      out += NormalizeNumber(json.substr(start, i - start));
    } else {
      out += c;
      ++i;
    }
  }
  return out;
}

}  // namespace wevlin_bench
