#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/interop/Base64.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::Base64;

static_assert(!std::is_default_constructible_v<Base64>, "the class has static members only");

std::string Encode(const std::string& in) {
  std::string out;
  Base64::EncodeString(in, out);
  return out;
}

std::string Decode(const std::string& in) {
  std::string out;
  Base64::DecodeString(in, out);
  return out;
}

// Builds a byte string from its bytes, written as numbers.
std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (int value : values) {
    bytes.push_back(static_cast<char>(value));
  }
  return bytes;
}

std::string AllByteValues() {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    bytes.push_back(static_cast<char>(value));
  }
  return bytes;
}

const std::vector<std::pair<std::string, std::string>> kStandardVectors = {
    {"", ""},
    {"f", "Zg=="},
    {"fo", "Zm8="},
    {"foo", "Zm9v"},
    {"foob", "Zm9vYg=="},
    {"fooba", "Zm9vYmE="},
    {"foobar", "Zm9vYmFy"},
};

TEST(Base64Test, EncodesTheStandardTestVectors) {
  for (const auto& [plain, encoded] : kStandardVectors) {
    EXPECT_EQ(Encode(plain), encoded) << "input \"" << plain << "\"";
  }
}

TEST(Base64Test, DecodesTheStandardTestVectors) {
  for (const auto& [plain, encoded] : kStandardVectors) {
    EXPECT_EQ(Decode(encoded), plain) << "input \"" << encoded << "\"";
  }
}

TEST(Base64Test, EncodesShortTexts) {
  EXPECT_EQ(Encode("ab"), "YWI=");
  EXPECT_EQ(Encode("abc"), "YWJj");
  EXPECT_EQ(Encode("a"), "YQ==");
}

TEST(Base64Test, EncodesEverySixBitValueWithTheStandardAlphabet) {
  // 48 bytes whose bits spell the values 0..63 in order.
  std::string bytes;
  for (int value = 0; value < 64; value += 4) {
    bytes.push_back(static_cast<char>((value << 2) | ((value + 1) >> 4)));
    bytes.push_back(static_cast<char>(((value + 1) << 4) | ((value + 2) >> 2)));
    bytes.push_back(static_cast<char>(((value + 2) << 6) | (value + 3)));
  }
  EXPECT_EQ(Encode(bytes), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}

TEST(Base64Test, EncodesAllByteValues) {
  EXPECT_EQ(Encode(AllByteValues()),
            "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLS4vMDEyMzQ1Njc4OTo7PD0+"
            "P0BBQkNERUZHSElKS0xNTk9QUVJTVFVWV1hZWltcXV5fYGFiY2RlZmdoaWprbG1ub3BxcnN0dXZ3eHl6e3x9"
            "fn+AgYKDhIWGh4iJiouMjY6PkJGSk5SVlpeYmZqbnJ2en6ChoqOkpaanqKmqq6ytrq+wsbKztLW2t7i5uru8"
            "vb6/wMHCw8TFxsfIycrLzM3Oz9DR0tPU1dbX2Nna29zd3t/g4eLj5OXm5+jp6uvs7e7v8PHy8/T19vf4+fr7"
            "/P3+/w==");
}

TEST(Base64Test, AllByteValuesRoundTrip) {
  const std::string bytes = AllByteValues();
  EXPECT_EQ(Decode(Encode(bytes)), bytes);
  for (int value = 0; value < 256; ++value) {
    const std::string single(1, static_cast<char>(value));
    EXPECT_EQ(Decode(Encode(single)), single) << "byte " << value;
  }
}

TEST(Base64Test, HighBytesAreTreatedAsUnsigned) {
  EXPECT_EQ(Encode(Bytes({0xff, 0xff, 0xff})), "////");
  EXPECT_EQ(Encode(Bytes({0xff})), "/w==");
  EXPECT_EQ(Encode(Bytes({0xfb, 0xff})), "+/8=");
  EXPECT_EQ(Decode("////"), Bytes({0xff, 0xff, 0xff}));
}

TEST(Base64Test, RandomBytesRoundTripAtEveryLengthUpTo300) {
  std::mt19937 random(20140701);
  std::uniform_int_distribution<int> byte(0, 255);
  for (std::size_t length = 0; length <= 300; ++length) {
    std::string bytes;
    for (std::size_t i = 0; i < length; ++i) {
      bytes.push_back(static_cast<char>(byte(random)));
    }
    const std::string encoded = Encode(bytes);
    ASSERT_EQ(encoded.size(), (length + 2) / 3 * 4) << "length " << length;
    EXPECT_EQ(encoded.find('\n'), std::string::npos);
    EXPECT_EQ(Decode(encoded), bytes) << "length " << length;
  }
}

// Encodes bit by bit, six bits to a character, as RFC 4648 describes it.
std::string PlainEncode(const std::string& in) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  const std::size_t bits = in.size() * 8;
  for (std::size_t bit = 0; bit < bits; bit += 6) {
    int value = 0;
    for (std::size_t i = bit; i < bit + 6; ++i) {
      const int set = i < bits ? (static_cast<unsigned char>(in[i / 8]) >> (7 - i % 8)) & 1 : 0;
      value = value * 2 + set;
    }
    out += kAlphabet[value];
  }
  while (out.size() % 4 != 0) out += '=';
  return out;
}

TEST(Base64Test, EncodesLikeAPlainEncoderAtEveryLengthUpTo300) {
  std::mt19937 random(20140702);
  std::uniform_int_distribution<int> byte(0, 255);
  std::string bytes;
  for (std::size_t length = 0; length <= 300; ++length) {
    ASSERT_EQ(Encode(bytes), PlainEncode(bytes)) << "length " << length;
    bytes.push_back(static_cast<char>(byte(random)));
  }
}

TEST(Base64Test, LongInputIsNeverWrapped) {
  const std::string bytes(3000, 'x');
  const std::string encoded = Encode(bytes);
  EXPECT_EQ(encoded.size(), 4000u);
  EXPECT_EQ(encoded.find_first_not_of("eHh4"), std::string::npos);
  EXPECT_EQ(encoded.substr(0, 8), "eHh4eHh4");
}

TEST(Base64Test, DecodesWithoutPadding) {
  EXPECT_EQ(Decode("YWI"), "ab");
  EXPECT_EQ(Decode("Zg"), "f");
  EXPECT_EQ(Decode("Zm9vYmE"), "fooba");
}

TEST(Base64Test, RemovesAnyNumberOfTrailingPadding) {
  EXPECT_EQ(Decode("YWI====="), "ab");
  EXPECT_EQ(Decode("YWI="), "ab");
  EXPECT_EQ(Decode("Zg="), "f");
  EXPECT_EQ(Decode("Zm9v===="), "foo");
  EXPECT_EQ(Decode("===="), "");
  EXPECT_EQ(Decode("="), "");
}

TEST(Base64Test, IgnoresAFinalSingleCharacter) {
  EXPECT_EQ(Decode("Z"), "");
  EXPECT_EQ(Decode("Zm9vY"), "foo");
  EXPECT_EQ(Decode("Zm9vY=="), "foo");
  EXPECT_EQ(Decode("Zm9v/"), "foo");
}

TEST(Base64Test, DecodesTheEmptyText) { EXPECT_EQ(Decode(""), ""); }

// For these the bytes follow from the rule that a character outside the
// alphabet has the value 64, combined per group as
//   b0 = (v0 << 2) + ((v1 & 0x30) >> 4)
//   b1 = ((v1 & 0x0f) << 4) + ((v2 & 0x3c) >> 2)
//   b2 = ((v2 & 0x03) << 6) + v3
// each cut to 8 bits; "/" is 63 and "A" is 0.
TEST(Base64Test, ForeignCharactersTakeTheValue64) {
  for (char foreign : {'-', '_', ' ', '\n'}) {
    const std::string f(1, foreign);
    SCOPED_TRACE(testing::Message() << "character " << static_cast<int>(foreign));
    // First position: 64 << 2 is 0x100, so only v1's two bits survive.
    EXPECT_EQ(Decode(f + "///"), Bytes({0x03, 0xff, 0xff}));
    // Second position: contributes nothing to b0 or b1.
    EXPECT_EQ(Decode("/" + f + "//"), Bytes({0xfc, 0x0f, 0xff}));
    // Third position: contributes nothing to b1 or b2.
    EXPECT_EQ(Decode("//" + f + "/"), Bytes({0xff, 0xf0, 0x3f}));
    // Fourth position: adds 0x40 to b2, and the carry out of the byte is lost.
    EXPECT_EQ(Decode("///" + f), Bytes({0xff, 0xff, 0x00}));
    EXPECT_EQ(Decode("AAA" + f), Bytes({0x00, 0x00, 0x40}));
    EXPECT_EQ(Decode("AAB" + f), Bytes({0x00, 0x00, 0x80}));
    EXPECT_EQ(Decode("AAC" + f), Bytes({0x00, 0x00, 0xc0}));
    EXPECT_EQ(Decode("AAD" + f), Bytes({0x00, 0x00, 0x00}));
    // A whole group of them.
    EXPECT_EQ(Decode(f + f + f + f), Bytes({0x00, 0x00, 0x40}));
    // In a final group of 2 or 3 characters.
    EXPECT_EQ(Decode(f + "/"), Bytes({0x03}));
    EXPECT_EQ(Decode("/" + f + "/"), Bytes({0xfc, 0x0f}));
    EXPECT_EQ(Decode("//" + f), Bytes({0xff, 0xf0}));
  }
}

TEST(Base64Test, BytesAbove127AreForeignCharacters) {
  EXPECT_EQ(Decode("AAA\xc3"), Bytes({0x00, 0x00, 0x40}));
  EXPECT_EQ(Decode("\xff///"), Bytes({0x03, 0xff, 0xff}));
}

TEST(Base64Test, PaddingInsideTheTextIsAForeignCharacter) {
  // Only the trailing "==" is removed; the inner one stays and counts as 64.
  EXPECT_EQ(Decode("YQ==YQ=="), Bytes({0x61, 0x00, 0x40, 0x61}));
}

TEST(Base64Test, UrlSafeTextDoesNotDecodeLikeTheStandardAlphabet) {
  // "+/8=" is 0xfb 0xff; its URL-safe spelling "-_8=" is not understood.
  EXPECT_EQ(Decode("+/8="), Bytes({0xfb, 0xff}));
  EXPECT_EQ(Decode("-_8="), Bytes({0x00, 0x0f}));
}

TEST(Base64Test, TextWrappedAt76ColumnsDoesNotDecodeToTheOriginal) {
  const std::string original = "The quick brown fox jumps over the lazy dog, twice: again!!?";
  ASSERT_EQ(original.size(), 60u);
  const std::string encoded = Encode(original);
  ASSERT_EQ(encoded,
            "VGhlIHF1aWNrIGJyb3duIGZveCBqdW1wcyBvdmVyIHRoZSBsYXp5IGRvZywgdHdpY2U6IGFnYWluISE/");

  // The first 76 characters are 19 whole groups and survive; the line break
  // shifts the rest out of step.
  const std::string lf = encoded.substr(0, 76) + "\n" + encoded.substr(76);
  EXPECT_EQ(Decode(lf), original.substr(0, 57) + Bytes({0x00, 0x84, 0x84}));

  const std::string crlf = encoded.substr(0, 76) + "\r\n" + encoded.substr(76);
  EXPECT_EQ(Decode(crlf), original.substr(0, 57) + Bytes({0x00, 0x02, 0x12, 0x13}));
}

TEST(Base64Test, EncodeReplacesTheOutput) {
  std::string out = "previous content that is longer than the result";
  Base64::EncodeString("f", out);
  EXPECT_EQ(out, "Zg==");
  Base64::EncodeString("", out);
  EXPECT_EQ(out, "");
}

TEST(Base64Test, DecodeReplacesTheOutput) {
  std::string out = "previous content that is longer than the result";
  Base64::DecodeString("Zm9v", out);
  EXPECT_EQ(out, "foo");
  out = "x";
  Base64::DecodeString("Zm9vYmFy", out);
  EXPECT_EQ(out, "foobar");
  Base64::DecodeString("=", out);
  EXPECT_EQ(out, "");
}

TEST(Base64Test, InputAndOutputMayBeTheSameString) {
  std::string text = "foobar";
  Base64::EncodeString(text, text);
  EXPECT_EQ(text, "Zm9vYmFy");
  Base64::DecodeString(text, text);
  EXPECT_EQ(text, "foobar");
}

TEST(Base64Test, EmbeddedJsonSurvivesTheRoundTrip) {
  const std::string json =
      "{\"Exception\": {\"message\": \"a \\\"quoted\\\" \\\\ path\", "
      "\"name\": \"std::runtime_error\"}}";
  const std::string encoded = Encode(json);
  EXPECT_EQ(encoded.find_first_of("\"\\"), std::string::npos);
  EXPECT_EQ(Decode(encoded), json);
}

}  // namespace
