#include "wevlin/webcontrols/internal/Utf8Text.h"

#include <cstddef>

namespace Com::Velmora::TAVO::Wevlin::WebControls::internal {

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";

// Returns the length of the well-formed sequence at `pos`, or 0 when the
// bytes there are ill-formed; `*consumed` is then the length of the maximal
// subpart to replace (at least 1).
std::size_t SequenceLength(std::string_view text, std::size_t pos, std::size_t* consumed) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(pos);
  *consumed = 1;
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (pos + i >= text.size()) return 0;
    const unsigned char next = byte(pos + i);
    const unsigned char min = i == 1 ? low : 0x80;
    const unsigned char max = i == 1 ? high : 0xBF;
    if (next < min || next > max) return 0;
    *consumed = i + 1;
  }
  return length;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Reads the code unit of a "\uXXXX" escape at `pos`; -1 when there is none.
long UnitAt(std::string_view json, std::size_t pos) {
  if (pos + 6 > json.size() || json[pos] != '\\' || json[pos + 1] != 'u') return -1;
  long unit = 0;
  for (std::size_t i = pos + 2; i < pos + 6; ++i) {
    const int digit = HexValue(json[i]);
    if (digit < 0) return -1;
    unit = unit * 16 + digit;
  }
  return unit;
}

}  // namespace

std::string ToValidUtf8(std::string_view text) {
  if (IsValidUtf8(text)) return std::string(text);
  std::string out;
  out.reserve(text.size());
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t consumed = 0;
    const std::size_t length = SequenceLength(text, pos, &consumed);
    if (length == 0) {
      out += kReplacement;
      pos += consumed;
    } else {
      out.append(text, pos, length);
      pos += length;
    }
  }
  return out;
}

bool IsValidUtf8(std::string_view text) {
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t consumed = 0;
    const std::size_t length = SequenceLength(text, pos, &consumed);
    if (length == 0) return false;
    pos += length;
  }
  return true;
}

std::string RepairSurrogateEscapes(std::string_view json) {
  std::string out;
  out.reserve(json.size());
  std::size_t pos = 0;
  while (pos < json.size()) {
    const std::size_t slash = json.find('\\', pos);
    if (slash == std::string_view::npos) {
      out.append(json, pos, std::string_view::npos);
      break;
    }
    out.append(json, pos, slash - pos);
    const long unit = UnitAt(json, slash);
    if (unit < 0xD800 || unit > 0xDFFF) {
      // Any other escape, a surrogate-free \u escape included, is kept whole.
      const std::size_t length = unit >= 0 ? 6 : (slash + 1 < json.size() ? 2 : 1);
      out.append(json, slash, length);
      pos = slash + length;
      continue;
    }
    if (unit <= 0xDBFF) {
      const long next = UnitAt(json, slash + 6);
      if (next >= 0xDC00 && next <= 0xDFFF) {
        out.append(json, slash, 12);
        pos = slash + 12;
        continue;
      }
    }
    out += "\\ufffd";
    pos = slash + 6;
  }
  return out;
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::internal
