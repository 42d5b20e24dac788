// Reads any text as a JsonValue. A text that reads false or throws must leave
// the value Null; one that reads true must survive writing, reading back and
// writing again unchanged (see JsonRewriteCheck.h for the two deliberate
// exceptions of the format).

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "FuzzCheck.h"
#include "JsonRewriteCheck.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::string text = wevlin_fuzz::AsText(data, size);
  JsonValue value(1);
  bool read = false;
  try {
    read = value.FromJsonString(text);
  } catch (const std::runtime_error&) {
    wevlin_fuzz::Require(value.GetType() == JsonValue::Null, "a throwing read left a value",
                         {text});
    return 0;
  }
  if (!read) {
    wevlin_fuzz::Require(value.GetType() == JsonValue::Null, "a false read left a value", {text});
    return 0;
  }
  wevlin_fuzz::CheckRewrite(value);
  return 0;
}
