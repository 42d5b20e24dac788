#include "wevlin/infrastructure/services/Pair.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

Pair::Pair() { RegisterFields(); }

Pair::Pair(const std::string& key, const std::string& value) : Key(key), Value(value) {
  RegisterFields();
}

Pair::Pair(const Pair& other) : DataContract(other), Key(other.Key), Value(other.Value) {
  RegisterFields();
}

Pair& Pair::operator=(const Pair& other) {
  if (this != &other) {
    Key = other.Key;
    Value = other.Value;
  }
  return *this;
}

Pair::~Pair() = default;

void Pair::RegisterFields() {
  RegisterField("Key", Key);
  RegisterField("Value", Value);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services
