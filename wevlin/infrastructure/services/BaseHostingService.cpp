#include "wevlin/infrastructure/services/BaseHostingService.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

BaseHostingService::BaseHostingService(std::string fqn, std::string version)
    : fqn_(std::move(fqn)), version_(std::move(version)) {}

BaseHostingService::BaseHostingService(const BaseHostingService& other) = default;

BaseHostingService& BaseHostingService::operator=(const BaseHostingService& other) = default;

BaseHostingService::~BaseHostingService() = default;

std::string BaseHostingService::GetFQN() const { return fqn_; }

std::string BaseHostingService::GetSvcVersion() const { return version_; }

Interop::IHostServiceInteraction* BaseHostingService::GetInteraction() const {
  // The interaction is this very object; the interface hands it out mutable
  // from a const operation.
  return const_cast<BaseHostingService*>(this);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

std::string BaseHostingService::InvokeMethod(Interop::IHostControlInstance* instance,
                                             Interop::IHostServiceDescriptor* descriptor,
                                             std::string payload) {
  return DoInvokeMethod(instance, descriptor, std::move(payload));
}

void BaseHostingService::InvokeEvent(Interop::IHostControlInstance* instance,
                                     Interop::IHostServiceDescriptor* descriptor,
                                     std::string payload) {
  DoInvokeEvent(instance, descriptor, std::move(payload));
}

std::string BaseHostingService::DoInvokeMethod(Interop::IHostControlInstance* /*instance*/,
                                               Interop::IHostServiceDescriptor* /*descriptor*/,
                                               std::string /*payload*/) {
  return {};
}

void BaseHostingService::DoInvokeEvent(Interop::IHostControlInstance* /*instance*/,
                                       Interop::IHostServiceDescriptor* /*descriptor*/,
                                       std::string /*payload*/) {}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services
