#include "wevlin/infrastructure/interop/internal/JsonWriter.h"

#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

void AppendJsonObject(std::string& out, const JsonObject& object) {
  JsonWriter(out).Object(object);
}

void AppendJsonValue(std::string& out, const JsonValue& value) { JsonWriter(out).Value(value); }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
