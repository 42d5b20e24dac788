#include "wevlin/infrastructure/interop/JsonValue.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The content of a value. Every body starts with its kind; what follows
// depends on the kind, and each kind's body is allocated at its own size:
//  - Null, Integer, Double and Boolean share ScalarBody (24 bytes on 64-bit
//    systems, the smallest block glibc hands out), so a scalar setter
//    changes such a body in place;
//  - a String, Array or Object body holds the string, the vector of elements
//    or the JsonObject after the kind (40, 32 and 64 bytes).
// A value of one kind therefore never holds a slot of another kind. A body is
// owned by exactly one JsonValue, except the shared Null body of moved-from
// and cleared values, which nobody changes; same threading as JsonValue.
struct JsonValueBody {
  explicit JsonValueBody(JsonValue::ValueType kind) noexcept : type(kind) {}

  JsonValue::ValueType type;
};

namespace {

// The body of the four scalar kinds. Its three slots fit in the same block
// as one would; the one the kind names is meaningful.
struct ScalarBody final : JsonValueBody {
  explicit ScalarBody(JsonValue::ValueType kind) noexcept : JsonValueBody(kind) {}

  int integer = 0;
  bool boolean = false;
  double number = 0.0;
};

template <JsonValue::ValueType kKind, typename Slot>
struct SlotBody final : JsonValueBody {
  SlotBody() : JsonValueBody(kKind) {}
  explicit SlotBody(Slot value) : JsonValueBody(kKind), slot(std::move(value)) {}

  Slot slot;
};

using StringBody = SlotBody<JsonValue::String, std::string>;
using ObjectBody = SlotBody<JsonValue::Object, JsonObject>;
using ArrayBody = SlotBody<JsonValue::Array, std::vector<JsonValue>>;

// Returns `body` as the body of its kind. REQUIRES: `Body` is the type that
// `body->type` names, as every caller checks first.
template <typename Body>
Body& As(JsonValueBody* body) noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): the kind names the type
  return *static_cast<Body*>(body);
}

template <typename Body>
const Body& As(const JsonValueBody* body) noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): the kind names the type
  return *static_cast<const Body*>(body);
}

bool IsScalar(JsonValue::ValueType type) noexcept {
  return type != JsonValue::String && type != JsonValue::Object && type != JsonValue::Array;
}

// The body of every moved-from or cleared value: Null, shared, never changed
// and never freed (it lives in static storage that is not destroyed, so values
// that are destroyed late at process exit can still compare against it).
JsonValueBody* SharedNullBody() noexcept {
  alignas(ScalarBody) static unsigned char storage[sizeof(ScalarBody)];
  static auto* const body = new (storage) ScalarBody(JsonValue::Null);
  return body;
}

ScalarBody* NewScalar(JsonValue::ValueType type) { return new ScalarBody(type); }

// Frees `body` as the body of its kind; the shared Null body stays.
void DeleteBody(JsonValueBody* body) noexcept {
  if (body == SharedNullBody()) return;
  switch (body->type) {
    case JsonValue::String:
      delete &As<StringBody>(body);
      return;
    case JsonValue::Object:
      delete &As<ObjectBody>(body);
      return;
    case JsonValue::Array:
      delete &As<ArrayBody>(body);
      return;
    default:
      delete &As<ScalarBody>(body);
      return;
  }
}

// Returns a new body holding a deep copy of `body`'s content.
JsonValueBody* CopyBody(const JsonValueBody& body) {
  switch (body.type) {
    case JsonValue::String:
      return new StringBody(As<StringBody>(&body).slot);
    case JsonValue::Object:
      return new ObjectBody(As<ObjectBody>(&body).slot);
    case JsonValue::Array:
      return new ArrayBody(As<ArrayBody>(&body).slot);
    default:
      return new ScalarBody(As<ScalarBody>(&body));
  }
}

}  // namespace

JsonValue::JsonValue() : body_(NewScalar(Null)) {}

JsonValue::JsonValue(int value) : body_(NewScalar(Integer)) {
  As<ScalarBody>(body_).integer = value;
}

JsonValue::JsonValue(double value) : body_(NewScalar(Double)) {
  As<ScalarBody>(body_).number = value;
}

JsonValue::JsonValue(bool value) : body_(NewScalar(Boolean)) {
  As<ScalarBody>(body_).boolean = value;
}

JsonValue::JsonValue(const std::string& value) : body_(new StringBody(value)) {}

JsonValue::JsonValue(std::string&& value) : body_(new StringBody(std::move(value))) {}

JsonValue::JsonValue(const char* value)
    : body_(new StringBody(value == nullptr ? std::string() : std::string(value))) {}

JsonValue::JsonValue(const JsonObject& value) : body_(new ObjectBody(value)) {}

JsonValue::JsonValue(JsonObject&& value) : body_(new ObjectBody(std::move(value))) {}

JsonValue::JsonValue(const std::vector<JsonValue>& value) : body_(new ArrayBody(value)) {}

JsonValue::JsonValue(std::vector<JsonValue>&& value) : body_(new ArrayBody(std::move(value))) {}

JsonValue::JsonValue(const JsonValue& other) : body_(CopyBody(*other.body_)) {}

JsonValue& JsonValue::operator=(const JsonValue& other) {
  if (this != &other) {
    // Copy before releasing the old body: `other` may live inside it.
    JsonValueBody* copy = CopyBody(*other.body_);
    DeleteBody(body_);
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
    DeleteBody(old);
  }
  return *this;
}

JsonValue::~JsonValue() { DeleteBody(body_); }

// The scalar setters reuse a scalar body of this value; any other body is
// replaced (and so released at once, as Clear would).
namespace {

ScalarBody* ScalarBodyOf(JsonValueBody*& body, JsonValue::ValueType type) {
  if (body != SharedNullBody() && IsScalar(body->type)) {
    body->type = type;
    return &As<ScalarBody>(body);
  }
  ScalarBody* fresh = NewScalar(type);
  DeleteBody(body);
  body = fresh;
  return fresh;
}

// Replaces `body` with `fresh`, releasing the old one.
void Replace(JsonValueBody*& body, JsonValueBody* fresh) noexcept {
  DeleteBody(body);
  body = fresh;
}

}  // namespace

void JsonValue::SetValue(int value) { ScalarBodyOf(body_, Integer)->integer = value; }

void JsonValue::SetValue(double value) { ScalarBodyOf(body_, Double)->number = value; }

void JsonValue::SetValue(bool value) { ScalarBodyOf(body_, Boolean)->boolean = value; }

void JsonValue::SetValue(const std::string& value) {
  // Copied first: `value` may be this value's own string.
  SetValue(std::string(value));
}

void JsonValue::SetValue(std::string&& value) {
  if (body_->type == String) {
    // A new string object first: `value` may be this value's own string.
    std::string taken(std::move(value));
    As<StringBody>(body_).slot = std::move(taken);
    return;
  }
  Replace(body_, new StringBody(std::move(value)));
}

void JsonValue::SetValue(const char* value) {
  SetValue(value == nullptr ? std::string() : std::string(value));
}

void JsonValue::SetValue(const JsonObject& value) { SetValue(JsonObject(value)); }

void JsonValue::SetValue(JsonObject&& value) {
  // The new body takes the object before the old body, which may hold it,
  // is released.
  Replace(body_, new ObjectBody(std::move(value)));
}

void JsonValue::SetValue(const std::vector<JsonValue>& value) {
  SetValue(std::vector<JsonValue>(value));
}

void JsonValue::SetValue(std::vector<JsonValue>&& value) {
  Replace(body_, new ArrayBody(std::move(value)));
}

void JsonValue::PushBack(const JsonValue& value) {
  // Copied first: `value` may live inside this value.
  PushBack(JsonValue(value));
}

void JsonValue::PushBack(JsonValue&& value) {
  JsonValue taken(std::move(value));
  if (body_->type != Array) Replace(body_, new ArrayBody());
  As<ArrayBody>(body_).slot.push_back(std::move(taken));
}

void JsonValue::Clear() {
  if (body_ == SharedNullBody()) return;
  if (IsScalar(body_->type)) {
    body_->type = Null;
    return;
  }
  // A string, array or object is released at once; the value then shares
  // the Null body until a setter gives it a body of its own again.
  Replace(body_, SharedNullBody());
}

JsonValue::ValueType JsonValue::GetType() const { return body_->type; }

int JsonValue::GetAsInt() const {
  ValidateType(Integer);
  return As<ScalarBody>(body_).integer;
}

double JsonValue::GetAsDouble() const {
  ValidateType(Double);
  return As<ScalarBody>(body_).number;
}

bool JsonValue::GetAsBool() const {
  ValidateType(Boolean);
  return As<ScalarBody>(body_).boolean;
}

const std::string& JsonValue::GetAsString() const {
  ValidateType(String);
  return As<StringBody>(body_).slot;
}

const JsonObject& JsonValue::GetAsObject() const {
  ValidateType(Object);
  return As<ObjectBody>(body_).slot;
}

const std::vector<JsonValue>& JsonValue::GetAsArray() const {
  ValidateType(Array);
  return As<ArrayBody>(body_).slot;
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
