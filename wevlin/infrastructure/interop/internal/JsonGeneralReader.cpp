#include "wevlin/infrastructure/interop/internal/JsonGeneralReader.h"

#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

bool ParseArray(const std::string& text, std::vector<std::string>& out) {
  out.clear();
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '[') Fail(kNotAnArray);
  NestCursor cursor = ScanningCursor();
  return CutArray(trimmed, cursor,
                  [&out](const char* b, const char* e, std::size_t) { out.emplace_back(b, e); });
}

bool ParseArrayView(std::string_view text, std::vector<std::string_view>& out) {
  out.clear();
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '[') Fail(kNotAnArray);
  NestCursor cursor = ScanningCursor();
  return CutArray(trimmed, cursor, [&out](const char* b, const char* e, std::size_t) {
    out.emplace_back(b, static_cast<std::size_t>(e - b));
  });
}

bool ParseObject(const std::string& text, std::map<std::string, std::string>& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '{') Fail(kNotAnObject);
  out.clear();
  NestCursor cursor = ScanningCursor();
  return CutObject(trimmed, cursor,
                   [&out](std::string&& name, const char* b, const char* e, std::size_t) {
                     out.insert_or_assign(std::move(name), std::string(b, e));
                   });
}

bool ParseObjectView(std::string_view text, std::vector<RawProperty>& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '{') Fail(kNotAnObject);
  out.clear();
  NestCursor cursor = ScanningCursor();
  return CutObject(
      trimmed, cursor, [&out](std::string&& name, const char* b, const char* e, std::size_t) {
        out.push_back(
            RawProperty{std::move(name), std::string_view(b, static_cast<std::size_t>(e - b))});
      });
}

bool ReadJsonValueGeneral(std::string_view text, JsonValue& out) {
  // Read aside, so that `text` may even lie inside `out`; `out` ends Null
  // after a false result or an exception.
  struct ClearOnFailure {
    JsonValue* value;
    ~ClearOnFailure() {
      if (value != nullptr) value->Clear();
    }
  } guard{&out};
  JsonValue result;
  JsonGeneralReader reader;
  if (!reader.ReadValue(Slice{text.data(), text.data() + text.size(), kNone}, result, 1)) {
    return false;
  }
  guard.value = nullptr;
  out = std::move(result);
  return true;
}

bool ReadJsonObjectGeneral(std::string_view text, JsonObject& out) {
  const std::string_view trimmed = TrimJsonTextView(text);
  if (trimmed.empty() || trimmed.front() != '{') Fail(kNotAnObject);
  JsonGeneralReader reader;
  return reader.ReadObject(trimmed, kNone, 1, out);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
