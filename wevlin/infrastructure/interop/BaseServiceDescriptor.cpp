#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

BaseServiceDescriptor::BaseServiceDescriptor(std::string fqn, std::string version)
    : fqn_(std::move(fqn)), version_(std::move(version)) {}

BaseServiceDescriptor::BaseServiceDescriptor(const BaseServiceDescriptor& other) = default;

BaseServiceDescriptor& BaseServiceDescriptor::operator=(const BaseServiceDescriptor& other) =
    default;

BaseServiceDescriptor::~BaseServiceDescriptor() = default;

std::string BaseServiceDescriptor::GetFQN() const { return fqn_; }

std::string BaseServiceDescriptor::GetSvcVersion() const { return version_; }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
