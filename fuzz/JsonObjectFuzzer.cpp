// Reads any text as a JsonObject. A text that reads false or throws must leave
// the object as it was; one that reads true must survive writing, reading back
// and writing again unchanged (see JsonRewriteCheck.h for the two deliberate
// exceptions of the format).

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "JsonRewriteCheck.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonObject;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;

constexpr char kBefore[] = "{\"before\": [1, \"x\"]}";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::string text = wevlin_fuzz::AsText(data, size);
  JsonObject object;
  object.SetProperty("before", JsonValue(std::vector<JsonValue>{JsonValue(1), JsonValue("x")}));
  bool read = false;
  try {
    read = object.FromJsonString(text);
  } catch (const std::runtime_error&) {
    wevlin_fuzz::Require(object.ToJsonString() == kBefore, "a throwing read changed the object",
                         {text, object.ToJsonString()});
    return 0;
  }
  if (!read) {
    wevlin_fuzz::Require(object.ToJsonString() == kBefore, "a false read changed the object",
                         {text, object.ToJsonString()});
    return 0;
  }
  wevlin_fuzz::CheckRewrite(object);
  return 0;
}
