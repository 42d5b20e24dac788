#include "wevlin/infrastructure/interop/JsonValue.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The content of a value: its type and the one slot that type names, sharing
// storage with the slots of the other kinds, so that a body is as large as its
// largest slot (an object) and not the sum of all of them. Only the slot named
// by `type` is alive; a Null body has none. Every change of type goes through
// Reset, which destroys the live slot, and then stores the new one (a plain
// store for a scalar, an Emplace* helper for a string, object or array, which
// are constructed in place and destroyed explicitly), so a slot of another kind
// is never read. Owned by exactly one JsonValue, or the shared Null body that
// nobody changes; same threading as JsonValue.
struct JsonValueBody {
  JsonValueBody() noexcept {}

  // Copies `other`'s type and its live slot deeply.
  JsonValueBody(const JsonValueBody& other) {
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
    // Set only now: if a copy above throws, no slot is alive to destroy.
    type = other.type;
  }

  JsonValueBody& operator=(const JsonValueBody&) = delete;

  ~JsonValueBody() { Reset(); }

  // Destroys the live slot, releasing what it holds at once (a long string's
  // buffer, the elements of an array, the properties of an object), and makes
  // the body Null, as JsonValue::Clear documents.
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
  }

  // Each stores its argument in a Null body and sets the matching type.
  // None of them throws: the slots are built by moving.
  void EmplaceString(std::string&& value) noexcept {
    new (&stringValue) std::string(std::move(value));
    type = JsonValue::String;
  }
  void EmplaceObject(JsonObject&& value) noexcept {
    new (&objectValue) JsonObject(std::move(value));
    type = JsonValue::Object;
  }
  void EmplaceArray(std::vector<JsonValue>&& value) noexcept {
    new (&arrayValue) std::vector<JsonValue>(std::move(value));
    type = JsonValue::Array;
  }

  union {
    int intValue;
    double doubleValue;
    bool boolValue;
    std::string stringValue;
    JsonObject objectValue;
    std::vector<JsonValue> arrayValue;
  };
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
  body_->EmplaceString(std::move(taken));
}

void JsonValue::SetValue(const char* value) {
  SetValue(value == nullptr ? std::string() : std::string(value));
}

void JsonValue::SetValue(const JsonObject& value) { SetValue(JsonObject(value)); }

void JsonValue::SetValue(JsonObject&& value) {
  JsonObject taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->EmplaceObject(std::move(taken));
}

void JsonValue::SetValue(const std::vector<JsonValue>& value) {
  SetValue(std::vector<JsonValue>(value));
}

void JsonValue::SetValue(std::vector<JsonValue>&& value) {
  std::vector<JsonValue> taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->EmplaceArray(std::move(taken));
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
    body_->EmplaceArray(std::vector<JsonValue>());
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
