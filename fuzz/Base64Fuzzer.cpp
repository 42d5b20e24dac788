// Decodes any text as Base64, which never fails and gives three bytes for
// every four characters left after trailing "=" are dropped (two for a final
// three, one for a final two); and encodes the input, which must give only
// alphabet characters and padding, four for every started three bytes, and
// decode back to the input exactly.

#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::Base64;
namespace helper = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonSerializationHelper;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::string input = wevlin_fuzz::AsText(data, size);

  std::string decoded = "stale";
  Base64::DecodeString(input, decoded);
  std::size_t length = input.size();
  while (length > 0 && input[length - 1] == '=') --length;
  const std::size_t rest = length % 4;
  const std::size_t expected = length / 4 * 3 + (rest == 3 ? 2 : rest == 2 ? 1 : 0);
  wevlin_fuzz::Require(decoded.size() == expected, "decoded length", {input, decoded});
  std::string embedded;
  helper::DecodeEmbeddedJson(input, embedded);
  wevlin_fuzz::Require(embedded == decoded, "DecodeEmbeddedJson differs from DecodeString",
                       {input});

  std::string encoded = "stale";
  Base64::EncodeString(input, encoded);
  wevlin_fuzz::Require(encoded.size() == (input.size() + 2) / 3 * 4, "encoded length",
                       {input, encoded});
  const std::size_t padding = (3 - input.size() % 3) % 3;
  const std::size_t body = encoded.size() - padding;
  wevlin_fuzz::Require(encoded.find_first_not_of(kAlphabet) >= body, "encoded character",
                       {input, encoded});
  wevlin_fuzz::Require(encoded.find_first_not_of('=', body) == std::string::npos, "encoded padding",
                       {input, encoded});
  std::string back;
  Base64::DecodeString(encoded, back);
  wevlin_fuzz::Require(back == input, "encoding and decoding changed the bytes", {input, back});

  // In place, input and output being one string.
  std::string inPlace = input;
  Base64::EncodeString(inPlace, inPlace);
  wevlin_fuzz::Require(inPlace == encoded, "encoding in place", {input});
  Base64::DecodeString(inPlace, inPlace);
  wevlin_fuzz::Require(inPlace == input, "decoding in place", {input});
  return 0;
}
