#include "wevlin/infrastructure/interop/ExceptionHolder.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

ExceptionHolder::ExceptionHolder() { RegisterField("Exception", Exception); }

ExceptionHolder::ExceptionHolder(const ExceptionHolder& other)
    : DataContract(other), Exception(other.Exception) {
  RegisterField("Exception", Exception);
}

ExceptionHolder& ExceptionHolder::operator=(const ExceptionHolder& other) {
  if (this == &other) return *this;
  Exception = other.Exception;
  return *this;
}

ExceptionHolder::~ExceptionHolder() = default;

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
