#include "wevlin/infrastructure/services/BaseMessage.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

BaseMessage::BaseMessage(const std::string& version) : version_(version) {
  RegisterField("Version", version_);
}

BaseMessage::BaseMessage(const BaseMessage& other) : DataContract(other), version_(other.version_) {
  RegisterField("Version", version_);
}

BaseMessage& BaseMessage::operator=(const BaseMessage& other) {
  if (this != &other) version_ = other.version_;
  return *this;
}

BaseMessage::~BaseMessage() = default;

const std::string& BaseMessage::GetVersion() const { return version_; }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services
