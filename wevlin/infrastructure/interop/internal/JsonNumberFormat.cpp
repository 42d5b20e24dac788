#include "wevlin/infrastructure/interop/internal/JsonNumberFormat.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// std::to_chars with an explicit precision formats exactly as printf does in
// the C locale, and never looks at any locale.

void AppendInt(std::string& out, int value) {
  char buffer[16];
  const auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
  out.append(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

namespace {

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
  const int nextExponent = decimalExponent + 1;
  if (nextExponent >= 0 && nextExponent <= 22 &&
      std::fabs(value) >= kExactPowersOf10[static_cast<std::size_t>(nextExponent)]) {
    decimalExponent = nextExponent;
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

}  // namespace

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

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
