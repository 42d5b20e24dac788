#include "wevlin/infrastructure/interop/JsonValue.h"

#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <variant>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The slots, in the order of the kind numbers.
using JsonSlot = std::variant<std::monostate, int, std::string, double, bool, JsonObject,
                              std::vector<JsonValue>>;

// True if the slot of kind `kind` holds a `T`.
template <JsonValue::ValueType kind, typename T>
constexpr bool kSlotHolds = std::is_same_v<std::variant_alternative_t<kind, JsonSlot>, T>;

static_assert(kSlotHolds<JsonValue::Integer, int> && kSlotHolds<JsonValue::String, std::string> &&
                  kSlotHolds<JsonValue::Double, double> && kSlotHolds<JsonValue::Boolean, bool> &&
                  kSlotHolds<JsonValue::Object, JsonObject> &&
                  kSlotHolds<JsonValue::Array, std::vector<JsonValue>>,
              "the slots stand in the order of the kind numbers");

// The content of a value: the one slot its kind names, as a variant whose
// alternatives stand in the order of the kind numbers (std::monostate for
// Null), so that the alternative's index is the kind. The body is as large as
// its largest slot (an object) plus the index, not the sum of all slots; a
// change of kind destroys the old slot and builds the new one, so a slot of
// another kind can never be read. Owned by exactly one JsonValue, or the
// shared Null body that nobody changes; same threading as JsonValue.
struct JsonValueBody {
  // Makes the body Null, releasing at once what the old slot held (a long
  // string's buffer, the elements of an array, the properties of an object).
  void Reset() { slot.emplace<JsonValue::Null>(); }

  // Returns the kind of the live slot.
  JsonValue::ValueType Type() const noexcept {
    return static_cast<JsonValue::ValueType>(slot.index());
  }

  JsonSlot slot;
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
  body_->slot.emplace<Integer>(value);
}

void JsonValue::SetValue(double value) {
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->slot.emplace<Double>(value);
}

void JsonValue::SetValue(bool value) {
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->slot.emplace<Boolean>(value);
}

void JsonValue::SetValue(const std::string& value) {
  // Copied first: `value` may be this value's own string.
  SetValue(std::string(value));
}

void JsonValue::SetValue(std::string&& value) {
  std::string taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->slot.emplace<String>(std::move(taken));
}

void JsonValue::SetValue(const char* value) {
  SetValue(value == nullptr ? std::string() : std::string(value));
}

void JsonValue::SetValue(const JsonObject& value) { SetValue(JsonObject(value)); }

void JsonValue::SetValue(JsonObject&& value) {
  JsonObject taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->slot.emplace<Object>(std::move(taken));
}

void JsonValue::SetValue(const std::vector<JsonValue>& value) {
  SetValue(std::vector<JsonValue>(value));
}

void JsonValue::SetValue(std::vector<JsonValue>&& value) {
  std::vector<JsonValue> taken(std::move(value));
  Clear();
  if (body_ == SharedNullBody()) body_ = new JsonValueBody();
  body_->slot.emplace<Array>(std::move(taken));
}

void JsonValue::PushBack(const JsonValue& value) {
  // Copied first: `value` may live inside this value.
  PushBack(JsonValue(value));
}

void JsonValue::PushBack(JsonValue&& value) {
  JsonValue taken(std::move(value));
  if (body_->Type() != Array) {
    Clear();
    if (body_ == SharedNullBody()) body_ = new JsonValueBody();
    body_->slot.emplace<Array>();
  }
  std::get<Array>(body_->slot).push_back(std::move(taken));
}

void JsonValue::Clear() {
  // A moved-from value shares the Null body and has nothing to clear.
  if (body_ == SharedNullBody()) return;
  body_->Reset();
}

JsonValue::ValueType JsonValue::GetType() const { return body_->Type(); }

int JsonValue::GetAsInt() const {
  ValidateType(Integer);
  return *std::get_if<Integer>(&body_->slot);
}

double JsonValue::GetAsDouble() const {
  ValidateType(Double);
  return *std::get_if<Double>(&body_->slot);
}

bool JsonValue::GetAsBool() const {
  ValidateType(Boolean);
  return *std::get_if<Boolean>(&body_->slot);
}

const std::string& JsonValue::GetAsString() const {
  ValidateType(String);
  return *std::get_if<String>(&body_->slot);
}

const JsonObject& JsonValue::GetAsObject() const {
  ValidateType(Object);
  return *std::get_if<Object>(&body_->slot);
}

const std::vector<JsonValue>& JsonValue::GetAsArray() const {
  ValidateType(Array);
  return *std::get_if<Array>(&body_->slot);
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
  if (body_->Type() != type) throw std::logic_error("JsonValue invalid type requested");
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
