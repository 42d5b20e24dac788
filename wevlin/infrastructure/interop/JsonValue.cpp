#include "wevlin/infrastructure/interop/JsonValue.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The content of a value: every slot at once, in this order, and the type.
// Only the slot named by `type` is meaningful; the others are always empty,
// false or zero, because every setter resets the whole body first. Empty
// slots cost no allocation: an empty vector, map or short string lives inside
// the body itself.
struct JsonValueBody {
  // Resets every slot and the type, as JsonValue::Clear documents. Slots are
  // only ever non-empty when their type says so, so only that one has
  // anything to release.
  void Reset() noexcept {
    switch (type) {
      case JsonValue::Integer:
        intValue = 0;
        break;
      case JsonValue::Double:
        doubleValue = 0.0;
        break;
      case JsonValue::Boolean:
        boolValue = false;
        break;
      case JsonValue::String:
        // Swapped out rather than cleared, so that a long string's buffer is
        // released now and not kept for a later value of another kind.
        std::string().swap(stringValue);
        break;
      case JsonValue::Object:
        objectValue = JsonObject();
        break;
      case JsonValue::Array:
        std::vector<JsonValue>().swap(arrayValue);
        break;
      default:
        break;
    }
    type = JsonValue::Null;
  }

  std::vector<JsonValue> arrayValue;
  bool boolValue = false;
  double doubleValue = 0.0;
  int intValue = 0;
  JsonObject objectValue;
  std::string stringValue;
  JsonValue::ValueType type = JsonValue::Null;
};

namespace {

// The body of every moved-from value: Null, shared, never changed and never
// freed (it lives in static storage that is not destroyed, so values that are
// destroyed late at process exit can still compare against it).
JsonValueBody* SharedNullBody() noexcept {
  alignas(JsonValueBody) static unsigned char storage[sizeof(JsonValueBody)];
  static auto* const body = new (storage) JsonValueBody();
  return body;
}

}  // namespace

JsonValue::JsonValue() : body_(new JsonValueBody()) {}

JsonValue::JsonValue(int value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(double value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(bool value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(const std::string& value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(std::string&& value) : JsonValue() { SetValue(std::move(value)); }

JsonValue::JsonValue(const char* value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(const JsonObject& value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(JsonObject&& value) : JsonValue() { SetValue(std::move(value)); }

JsonValue::JsonValue(const std::vector<JsonValue>& value) : JsonValue() { SetValue(value); }

JsonValue::JsonValue(std::vector<JsonValue>&& value) : JsonValue() { SetValue(std::move(value)); }

JsonValue::JsonValue(const JsonValue& other) : body_(new JsonValueBody(*other.body_)) {}

JsonValue& JsonValue::operator=(const JsonValue& other) {
  if (this != &other) {
    // Copy before releasing the old body: `other` may live inside it.
    auto* copy = new JsonValueBody(*other.body_);
    if (body_ != SharedNullBody()) delete body_;
    body_ = copy;
  }
  return *this;
}

JsonValue::JsonValue(JsonValue&& other) noexcept : body_(other.body_) {
  other.body_ = SharedNullBody();
}

JsonValue& JsonValue::operator=(JsonValue&& other) noexcept {
  if (this != &other) {
    JsonValueBody* old = body_;
    body_ = other.body_;
    other.body_ = SharedNullBody();
    if (old != SharedNullBody()) delete old;
  }
  return *this;
}

JsonValue::~JsonValue() {
  if (body_ != SharedNullBody()) delete body_;
}

void JsonValue::SetValue(int value) {
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->intValue = value;
  body_->type = Integer;
}

void JsonValue::SetValue(double value) {
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->doubleValue = value;
  body_->type = Double;
}

void JsonValue::SetValue(bool value) {
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->boolValue = value;
  body_->type = Boolean;
}

void JsonValue::SetValue(const std::string& value) {
  // Copied first: `value` may be this value's own string.
  SetValue(std::string(value));
}

void JsonValue::SetValue(std::string&& value) {
  std::string taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->stringValue = std::move(taken);
  body_->type = String;
}

void JsonValue::SetValue(const char* value) {
  SetValue(value == nullptr ? std::string() : std::string(value));
}

void JsonValue::SetValue(const JsonObject& value) { SetValue(JsonObject(value)); }

void JsonValue::SetValue(JsonObject&& value) {
  JsonObject taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->objectValue = std::move(taken);
  body_->type = Object;
}

void JsonValue::SetValue(const std::vector<JsonValue>& value) {
  SetValue(std::vector<JsonValue>(value));
}

void JsonValue::SetValue(std::vector<JsonValue>&& value) {
  std::vector<JsonValue> taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->arrayValue = std::move(taken);
  body_->type = Array;
}

void JsonValue::PushBack(const JsonValue& value) {
  // Copied first: `value` may live inside this value.
  PushBack(JsonValue(value));
}

void JsonValue::PushBack(JsonValue&& value) {
  JsonValue taken(std::move(value));
  if (body_->type != Array) {
    Clear();
    if (body_ == SharedNullBody()) body_ = new JsonValueBody();
    body_->type = Array;
  }
  body_->arrayValue.push_back(std::move(taken));
}

void JsonValue::Clear() {
  // A moved-from value shares the Null body and has nothing to clear.
  if (body_ == SharedNullBody()) return;
  body_->Reset();
}

JsonValue::ValueType JsonValue::GetType() const { return body_->type; }

int JsonValue::GetAsInt() const {
  ValidateType(Integer);
  return body_->intValue;
}

double JsonValue::GetAsDouble() const {
  ValidateType(Double);
  return body_->doubleValue;
}

bool JsonValue::GetAsBool() const {
  ValidateType(Boolean);
  return body_->boolValue;
}

const std::string& JsonValue::GetAsString() const {
  ValidateType(String);
  return body_->stringValue;
}

const JsonObject& JsonValue::GetAsObject() const {
  ValidateType(Object);
  return body_->objectValue;
}

const std::vector<JsonValue>& JsonValue::GetAsArray() const {
  ValidateType(Array);
  return body_->arrayValue;
}

bool JsonValue::FromJsonString(const std::string& text) {
  return internal::ReadJsonValue(text, *this);
}

std::string JsonValue::ToJsonString() const {
  std::string text;
  internal::AppendJsonValue(text, *this);
  return text;
}

void JsonValue::ValidateType(ValueType type) const {
  if (body_->type != type) throw std::logic_error("JsonValue invalid type requested");
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
