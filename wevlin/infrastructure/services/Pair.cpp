#include "wevlin/infrastructure/services/Pair.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

Pair::Pair() { RegisterFields(); }

Pair::Pair(const std::string& key, const std::string& value) {
  RegisterFields();
  Key = key;
  Value = value;
}

Pair::Pair(const Pair& other) : DataContract(other) {
  RegisterFields();
  Key = other.Key;
  Value = other.Value;
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
