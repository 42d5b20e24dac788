#include "wevlin/infrastructure/interop/JsonValue.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The content of a value: its type and the one slot that the type names
// (integer, double, boolean, string, object or array). Only that slot exists,
// constructed in place, so a body is 64 bytes whatever the kind; the other
// kinds read as empty, false or zero simply because the accessors refuse
// them. Scalars, which are most of the values of a document, then take a
// quarter of the memory that a body holding every slot at once would, and
// their allocations stay in the allocator's quickest size classes.
struct JsonValueBody {
  JsonValueBody() noexcept : intValue(0) {}
  JsonValueBody(const JsonValueBody& other) : intValue(0) { CopyFrom(other); }
  JsonValueBody& operator=(const JsonValueBody&) = delete;
  ~JsonValueBody() { Reset(); }

  // Destroys the slot in use, leaving a Null body.
  void Reset() noexcept {
    switch (type) {
      case JsonValue::String:
        stringValue.~basic_string();
        break;
      case JsonValue::Object:
        objectValue.~JsonObject();
        break;
      case JsonValue::Array:
        arrayValue.~vector();
        break;
      default:
        break;
    }
    type = JsonValue::Null;
    intValue = 0;
  }

  // Makes this Null body a copy of `other`.
  void CopyFrom(const JsonValueBody& other) {
    switch (other.type) {
      case JsonValue::Integer:
        intValue = other.intValue;
        break;
      case JsonValue::Double:
        doubleValue = other.doubleValue;
        break;
      case JsonValue::Boolean:
        boolValue = other.boolValue;
        break;
      case JsonValue::String:
        new (&stringValue) std::string(other.stringValue);
        break;
      case JsonValue::Object:
        new (&objectValue) JsonObject(other.objectValue);
        break;
      case JsonValue::Array:
        new (&arrayValue) std::vector<JsonValue>(other.arrayValue);
        break;
      default:
        break;
    }
    type = other.type;
  }

  JsonValue::ValueType type = JsonValue::Null;
  union {
    int intValue;
    double doubleValue;
    bool boolValue;
    std::string stringValue;
    JsonObject objectValue;
    std::vector<JsonValue> arrayValue;
  };
};

namespace {

// The body of every moved-from value: Null, shared, never changed and never
// freed (it lives in static storage that is not destroyed, so values that are
// destroyed late at process exit can still compare against it).
JsonValueBody* SharedNullBody() noexcept {
  alignas(JsonValueBody) static unsigned char storage[sizeof(JsonValueBody)];
  static JsonValueBody* const body = new (storage) JsonValueBody();
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
    JsonValueBody* copy = new JsonValueBody(*other.body_);
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
  new (&body_->stringValue) std::string(std::move(taken));
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
  new (&body_->objectValue) JsonObject(std::move(taken));
  body_->type = Object;
}

void JsonValue::SetValue(const std::vector<JsonValue>& value) {
  SetValue(std::vector<JsonValue>(value));
}

void JsonValue::SetValue(std::vector<JsonValue>&& value) {
  std::vector<JsonValue> taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  new (&body_->arrayValue) std::vector<JsonValue>(std::move(taken));
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
    new (&body_->arrayValue) std::vector<JsonValue>();
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
