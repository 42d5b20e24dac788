#include "wevlin/infrastructure/interop/ExceptionInfo.h"

#include <stdexcept>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {
namespace {

// Names the class of `e`, most derived standard classes first, so that any
// exception deriving from std::runtime_error is named "std::runtime_error".
const char* NameOf(const std::exception& e) {
  if (dynamic_cast<const std::underflow_error*>(&e) != nullptr) return "std::underflow_error";
  if (dynamic_cast<const std::overflow_error*>(&e) != nullptr) return "std::overflow_error";
  if (dynamic_cast<const std::range_error*>(&e) != nullptr) return "std::range_error";
  if (dynamic_cast<const std::runtime_error*>(&e) != nullptr) return "std::runtime_error";
  if (dynamic_cast<const std::out_of_range*>(&e) != nullptr) return "std::out_of_range";
  if (dynamic_cast<const std::length_error*>(&e) != nullptr) return "std::length_error";
  if (dynamic_cast<const std::invalid_argument*>(&e) != nullptr) return "std::invalid_argument";
  if (dynamic_cast<const std::domain_error*>(&e) != nullptr) return "std::domain_error";
  if (dynamic_cast<const std::logic_error*>(&e) != nullptr) return "std::logic_error";
  return "std::exception";
}

}  // namespace

ExceptionInfo::ExceptionInfo() { RegisterFields(); }

ExceptionInfo::ExceptionInfo(const std::exception& e) : name(NameOf(e)), message(e.what()) {
  RegisterFields();
}

ExceptionInfo::ExceptionInfo(const ExceptionInfo& other)
    : DataContract(other), name(other.name), message(other.message) {
  RegisterFields();
}

ExceptionInfo& ExceptionInfo::operator=(const ExceptionInfo& other) {
  if (this == &other) return *this;
  name = other.name;
  message = other.message;
  return *this;
}

ExceptionInfo::~ExceptionInfo() = default;

std::string ExceptionInfo::ToJsonString() const {
  if (!HasError()) return "null";
  return DataContract::ToJsonString();
}

bool ExceptionInfo::HasError() const { return !name.empty() || !message.empty(); }

void ExceptionInfo::RegisterFields() {
  RegisterField("name", name);
  RegisterField("message", message);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
