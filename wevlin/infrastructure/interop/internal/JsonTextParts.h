#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONTEXTPARTS_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONTEXTPARTS_H_

// The small pieces that the JSON reading and writing routines of this folder
// share: the exception texts, the character classes of the format, the
// escapes of strings. Internal; any thread.
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// The texts of the exceptions the JSON routines throw.
inline constexpr char kNotAString[] = "JSON data is not a string";
inline constexpr char kInvalidEscape[] = "Invalid escape character";
inline constexpr char kNotABoolean[] = "JSON data is not a boolean";
inline constexpr char kNotAnInteger[] = "JSON data is not an integer";
inline constexpr char kNotAFloat[] = "JSON data is not a float";
inline constexpr char kNotADouble[] = "JSON data is not a double";
inline constexpr char kNotAnArray[] = "JSON data is not an array";
inline constexpr char kNotAnObject[] = "JSON data is not an object";

// No record, no element: an index that is none.
inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Throws std::runtime_error with one of the texts above.
[[noreturn]] inline void Fail(const char* message) { throw std::runtime_error(message); }

// isspace in the classic locale: blank, \t, \n, \v, \f, \r.
inline bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// isspace or iscntrl in the classic locale: bytes 0 to 32 and 127.
inline bool IsTrimmed(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= 0x20 || byte == 0x7f;
}

// Appends what the escape "\<escape>" of a string stands for to `out`, and
// returns false for a letter that is no escape. Both string readers share it.
// "\u" stands for nothing: the reader copies its digits as ordinary
// characters.
inline bool AppendEscape(char escape, std::string& out) {
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
inline constexpr std::array<char, 256> kEscapeTable = MakeEscapeTable();

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONTEXTPARTS_H_
