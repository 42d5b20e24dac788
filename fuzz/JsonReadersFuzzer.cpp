// Reads any text with both JSON readers: the one-pass reader (ReadJsonValue
// and ReadJsonObject, which fall back to the general reader for texts they
// decline) and the general reader alone. Both must end alike: the same
// result, the same value of the same kinds down to every element (doubles
// bit for bit), or the same exception text, and the same diagnostic lines.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string>

#include "FuzzCheck.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::JsonObject;
using interop::JsonValue;

bool SameObject(const JsonObject& a, const JsonObject& b);

// Returns true if `a` and `b` are of the same kind with the same content,
// comparing doubles by their bits (so -0 and 0 differ, as their texts do).
bool SameValue(const JsonValue& a, const JsonValue& b) {
  if (a.GetType() != b.GetType()) return false;
  switch (a.GetType()) {
    case JsonValue::Integer:
      return a.GetAsInt() == b.GetAsInt();
    case JsonValue::String:
      return a.GetAsString() == b.GetAsString();
    case JsonValue::Double: {
      const double x = a.GetAsDouble();
      const double y = b.GetAsDouble();
      return std::memcmp(&x, &y, sizeof(x)) == 0;
    }
    case JsonValue::Boolean:
      return a.GetAsBool() == b.GetAsBool();
    case JsonValue::Object:
      return SameObject(a.GetAsObject(), b.GetAsObject());
    case JsonValue::Array: {
      const auto& x = a.GetAsArray();
      const auto& y = b.GetAsArray();
      if (x.size() != y.size()) return false;
      for (std::size_t i = 0; i < x.size(); ++i) {
        if (!SameValue(x[i], y[i])) return false;
      }
      return true;
    }
    default:
      return true;
  }
}

bool SameObject(const JsonObject& a, const JsonObject& b) {
  const auto& x = a.GetAllProperties();
  const auto& y = b.GetAllProperties();
  if (x.size() != y.size()) return false;
  for (auto i = x.begin(), j = y.begin(); i != x.end(); ++i, ++j) {
    if (i->first != j->first || !SameValue(i->second, j->second)) return false;
  }
  return true;
}

// The diagnostic lines written since the last Take.
std::string& Logged() {
  static std::string lines;
  return lines;
}

std::string TakeLogged() {
  std::string lines;
  lines.swap(Logged());
  return lines;
}

// How one reading ended: "true", "false" or "throws <text>", then the lines
// it wrote.
template <typename Read>
std::string Outcome(Read&& read) {
  std::string outcome;
  try {
    outcome = read() ? "true" : "false";
  } catch (const std::exception& error) {
    outcome = std::string("throws ") + error.what();
  }
  return outcome + " | " + TakeLogged();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool collecting = [] {
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::SetLogSink(
        [](const std::string& line) { Logged() += line + "\n"; });
    return true;
  }();
  (void)collecting;
  const std::string text = wevlin_fuzz::AsText(data, size);

  // Both start from a value of another kind, which each must replace.
  JsonValue quick(1);
  JsonValue general(1);
  const std::string quickEnd =
      Outcome([&] { return interop::internal::ReadJsonValue(text, quick); });
  const std::string generalEnd =
      Outcome([&] { return interop::internal::ReadJsonValueGeneral(text, general); });
  wevlin_fuzz::Require(quickEnd == generalEnd, "the value readers ended differently",
                       {text, quickEnd, generalEnd});
  wevlin_fuzz::Require(SameValue(quick, general), "the value readers read different values",
                       {text, quick.ToJsonString(), general.ToJsonString()});

  // Both start from the same property, which stays unless the reading succeeds.
  JsonObject quickObject;
  quickObject.SetProperty("kept", JsonValue(1));
  JsonObject generalObject(quickObject);
  const std::string quickObjectEnd =
      Outcome([&] { return interop::internal::ReadJsonObject(text, quickObject); });
  const std::string generalObjectEnd =
      Outcome([&] { return interop::internal::ReadJsonObjectGeneral(text, generalObject); });
  wevlin_fuzz::Require(quickObjectEnd == generalObjectEnd, "the object readers ended differently",
                       {text, quickObjectEnd, generalObjectEnd});
  wevlin_fuzz::Require(SameObject(quickObject, generalObject),
                       "the object readers read different objects",
                       {text, quickObject.ToJsonString(), generalObject.ToJsonString()});
  return 0;
}
