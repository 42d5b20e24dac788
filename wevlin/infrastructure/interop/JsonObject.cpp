#include "wevlin/infrastructure/interop/JsonObject.h"

#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

JsonObject::JsonObject() noexcept = default;

JsonObject::JsonObject(const JsonObject& other) = default;

JsonObject& JsonObject::operator=(const JsonObject& other) {
  if (this != &other) {
    // Copy before replacing: `other` may live inside one of this object's
    // values.
    PropertyMap copy(other.properties_);
    properties_.swap(copy);
  }
  return *this;
}

JsonObject::JsonObject(JsonObject&& other) noexcept : properties_(std::move(other.properties_)) {
  other.properties_.clear();
}

JsonObject& JsonObject::operator=(JsonObject&& other) noexcept {
  if (this != &other) {
    PropertyMap taken(std::move(other.properties_));
    other.properties_.clear();
    properties_.swap(taken);
  }
  return *this;
}

JsonObject::~JsonObject() = default;

bool JsonObject::HasProperty(const std::string& name) const {
  return properties_.find(name) != properties_.end();
}

const JsonValue& JsonObject::GetProperty(const std::string& name) const {
  auto found = properties_.find(name);
  if (found == properties_.end()) throw std::runtime_error("JSON Object key not found.");
  return found->second;
}

void JsonObject::SetProperty(const std::string& name, const JsonValue& value) {
  properties_.insert_or_assign(name, value);
}

void JsonObject::SetProperty(std::string name, JsonValue&& value) {
  // Hinted at the end: properties read from text arrive in ascending order,
  // and then each insertion costs one comparison.
  properties_.insert_or_assign(properties_.end(), std::move(name), std::move(value));
}

const JsonObject::PropertyMap& JsonObject::GetAllProperties() const { return properties_; }

bool JsonObject::FromJsonString(const std::string& text) {
  return internal::ReadJsonObject(text, *this);
}

std::string JsonObject::ToJsonString() const {
  std::string text;
  internal::AppendJsonObject(text, *this);
  return text;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
