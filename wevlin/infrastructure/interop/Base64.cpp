#include "wevlin/infrastructure/interop/Base64.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The value that every character outside the alphabet decodes to.
constexpr std::uint8_t kForeign = 64;

// The two characters of every 12-bit value, so that each group of 3 bytes is
// encoded with two lookups and two 2-byte stores.
struct PairTable {
  char chars[4096 * 2];
};

constexpr PairTable MakePairTable() {
  PairTable table{};
  for (std::size_t value = 0; value < 4096; ++value) {
    table.chars[2 * value] = kAlphabet[value >> 6];
    table.chars[2 * value + 1] = kAlphabet[value & 0x3f];
  }
  return table;
}

constexpr PairTable kPairs = MakePairTable();

// The value of every byte: its index in the alphabet, or kForeign.
constexpr std::array<std::uint8_t, 256> MakeValueTable() {
  std::array<std::uint8_t, 256> table{};
  for (auto& value : table) {
    value = kForeign;
  }
  for (int index = 0; index < 64; ++index) {
    table[static_cast<unsigned char>(kAlphabet[index])] = static_cast<std::uint8_t>(index);
  }
  return table;
}

constexpr std::array<std::uint8_t, 256> kValues = MakeValueTable();

// Reads the eight bytes at `p` as a big-endian number (compilers turn this
// into one load and a byte swap).
inline std::uint64_t LoadBigEndian64(const unsigned char* p) {
  return (std::uint64_t{p[0]} << 56) | (std::uint64_t{p[1]} << 48) | (std::uint64_t{p[2]} << 40) |
         (std::uint64_t{p[3]} << 32) | (std::uint64_t{p[4]} << 24) | (std::uint64_t{p[5]} << 16) |
         (std::uint64_t{p[6]} << 8) | std::uint64_t{p[7]};
}

inline void PutPair(char* dst, std::uint32_t twelveBits) {
  std::memcpy(dst, &kPairs.chars[2 * std::size_t{twelveBits}], 2);
}

// The three output bytes of a group, as the class comment gives them; the
// casts to unsigned char keep the low 8 bits.
constexpr unsigned char Byte0(unsigned v0, unsigned v1) {
  return static_cast<unsigned char>((v0 << 2) + ((v1 & 0x30) >> 4));
}

constexpr unsigned char Byte1(unsigned v1, unsigned v2) {
  return static_cast<unsigned char>(((v1 & 0x0f) << 4) + ((v2 & 0x3c) >> 2));
}

constexpr unsigned char Byte2(unsigned v2, unsigned v3) {
  return static_cast<unsigned char>(((v2 & 0x03) << 6) + v3);
}

// For the decoding of full groups, the share that the character at each
// position of a group has in the three bytes, packed as b0 | b1 << 8 |
// b2 << 16. The shares of one byte never overlap and never carry into the next
// byte, except that b2 may reach 0x100 when the fourth character is foreign;
// that carry lands in bits 24 and up, which are never written. So a group
// decodes to the sum of four lookups, exactly as Byte0..Byte2 give it.
using ShareTable = std::array<std::uint32_t, 256>;

constexpr ShareTable MakeShareTable(int position) {
  ShareTable table{};
  for (std::size_t c = 0; c < table.size(); ++c) {
    const unsigned v = kValues[c];
    std::uint32_t share = 0;
    switch (position) {
      case 0:
        share = Byte0(v, 0);
        break;
      case 1:
        share = Byte0(0, v) | (std::uint32_t{Byte1(v, 0)} << 8);
        break;
      case 2:
        share = (std::uint32_t{Byte1(0, v)} << 8) | (std::uint32_t{Byte2(v, 0)} << 16);
        break;
      default:
        share = std::uint32_t{v} << 16;
        break;
    }
    table[c] = share;
  }
  return table;
}

constexpr ShareTable kShare0 = MakeShareTable(0);
constexpr ShareTable kShare1 = MakeShareTable(1);
constexpr ShareTable kShare2 = MakeShareTable(2);
constexpr ShareTable kShare3 = MakeShareTable(3);

}  // namespace

void Base64::EncodeString(const std::string& in, std::string& out) {
  if (&in == &out) {
    std::string encoded;
    EncodeString(in, encoded);
    out.swap(encoded);
    return;
  }
  const std::size_t size = in.size();
  const std::size_t groups = size / 3;
  const std::size_t rest = size % 3;
  out.resize((groups + (rest != 0 ? 1 : 0)) * 4);
  if (out.empty()) {
    return;
  }

  const auto* src = reinterpret_cast<const unsigned char*>(in.data());
  char* dst = out.data();
  std::size_t group = 0;
  // Two groups at a time while eight bytes can be read: the six bytes of two
  // groups, read as one big-endian number, give four 12-bit pair indexes.
  for (; group + 3 <= groups; group += 2) {
    const std::uint64_t bits = LoadBigEndian64(src) >> 16;
    PutPair(dst, static_cast<std::uint32_t>(bits >> 36));
    PutPair(dst + 2, static_cast<std::uint32_t>(bits >> 24) & 0xfff);
    PutPair(dst + 4, static_cast<std::uint32_t>(bits >> 12) & 0xfff);
    PutPair(dst + 6, static_cast<std::uint32_t>(bits) & 0xfff);
    src += 6;
    dst += 8;
  }
  for (; group < groups; ++group) {
    const std::uint32_t bits =
        (std::uint32_t{src[0]} << 16) | (std::uint32_t{src[1]} << 8) | std::uint32_t{src[2]};
    PutPair(dst, bits >> 12);
    PutPair(dst + 2, bits & 0xfff);
    src += 3;
    dst += 4;
  }
  if (rest == 1) {
    const std::uint32_t bits = std::uint32_t{src[0]} << 4;
    PutPair(dst, bits);
    dst[2] = '=';
    dst[3] = '=';
  } else if (rest == 2) {
    const std::uint32_t bits = (std::uint32_t{src[0]} << 10) | (std::uint32_t{src[1]} << 2);
    PutPair(dst, bits >> 6);
    dst[2] = kAlphabet[bits & 0x3f];
    dst[3] = '=';
  }
}

void Base64::DecodeString(const std::string& in, std::string& out) {
  if (&in == &out) {
    std::string decoded;
    DecodeString(in, decoded);
    out.swap(decoded);
    return;
  }
  std::size_t length = in.size();
  while (length > 0 && in[length - 1] == '=') {
    --length;
  }
  const std::size_t groups = length / 4;
  const std::size_t rest = length % 4;
  const std::size_t tailBytes = rest == 3 ? 2 : (rest == 2 ? 1 : 0);
  out.resize(groups * 3 + tailBytes);
  if (out.empty()) {
    return;
  }

  const auto* src = reinterpret_cast<const unsigned char*>(in.data());
  auto* dst = reinterpret_cast<unsigned char*>(out.data());
  for (std::size_t group = 0; group < groups; ++group) {
    const std::uint32_t bytes =
        kShare0[src[0]] + kShare1[src[1]] + kShare2[src[2]] + kShare3[src[3]];
    dst[0] = static_cast<unsigned char>(bytes);
    dst[1] = static_cast<unsigned char>(bytes >> 8);
    dst[2] = static_cast<unsigned char>(bytes >> 16);
    src += 4;
    dst += 3;
  }
  if (tailBytes >= 1) {
    const unsigned v0 = kValues[src[0]];
    const unsigned v1 = kValues[src[1]];
    dst[0] = Byte0(v0, v1);
    if (tailBytes == 2) {
      dst[1] = Byte1(v1, kValues[src[2]]);
    }
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
