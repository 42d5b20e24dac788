#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_BASE64_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_BASE64_H_

#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// Base64 codec used to carry a JSON document inside a string field of another
// JSON message, so that its quotes and backslashes need no second level of
// escaping.
//
// The alphabet is the standard one, "A"-"Z", "a"-"z", "0"-"9", "+", "/", with
// "=" as padding. Bytes are unsigned. Encoding never inserts line breaks.
// Decoding never fails: it is lenient in the exact way described at
// DecodeString, and callers on both sides rely on that.
//
// Static members only; stateless, so any thread may call them at any time.
class WEVLIN_EXPORT Base64 {
 public:
  Base64() = delete;

  // Replaces `out` by the Base64 text of the bytes of `in`: 4 characters per
  // group of 3 bytes; a final single byte gives 2 characters and "==", a final
  // two bytes give 3 characters and "=". The empty input gives the empty text.
  // `in` and `out` may be the same string.
  static void EncodeString(const std::string& in, std::string& out);

  // Replaces `out` by the bytes that the Base64 text `in` stands for. `in` and
  // `out` may be the same string.
  //
  // Every trailing "=" is removed first, however many there are. Each full
  // group of 4 characters then gives 3 bytes; a final group of 2 characters
  // gives 1 byte, of 3 characters 2 bytes, and a final single character is
  // ignored. A character's value is its index in the alphabet; any other
  // character (a line break, a blank, "-", "_", an "=" that is not trailing)
  // is not rejected but takes the value 64. With v0..v3 the values of a group,
  // the bytes are, each cut to its low 8 bits:
  //
  //   b0 = (v0 << 2) + ((v1 & 0x30) >> 4)
  //   b1 = ((v1 & 0x0f) << 4) + ((v2 & 0x3c) >> 2)
  //   b2 = ((v2 & 0x03) << 6) + v3
  //
  // So a foreign character in the first three positions of a group contributes
  // nothing, and one in the fourth position adds 0x40 to b2 (the carry out of
  // the byte is lost). Text wrapped into lines therefore does not decode to
  // the original bytes.
  static void DecodeString(const std::string& in, std::string& out);
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_BASE64_H_
