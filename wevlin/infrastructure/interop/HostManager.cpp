#include "wevlin/infrastructure/interop/HostManager.h"

#include <stdexcept>
#include <utility>

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/IndexedServiceList.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

HostManager* HostManager::m_instance = nullptr;

HostManager* HostManager::TheInstance() {
  if (m_instance == nullptr) m_instance = new HostManager();
  return m_instance;
}

// The list is an IndexedServiceList, so that lookups need not walk it.
HostManager::HostManager() : knownServices_(new internal::IndexedServiceList()) {}

HostManager::HostManager(const HostManager& other) = default;

HostManager& HostManager::operator=(const HostManager& other) = default;

HostManager::~HostManager() {
  for (auto& entry : targetConfigs_) delete entry.second;
  delete knownServices_;
}

std::string HostManager::GetVersion() { return "0.9"; }

Base::IObservableList<IHostServiceDescriptor*>* HostManager::KnownServices() const {
  return knownServices_;
}

bool HostManager::IsServiceSupported(ITargetServiceDesc* service) {
  return LookupService(service) != nullptr;
}

IHostServiceDescriptor* HostManager::LookupService(ITargetServiceDesc* service) {
  if (service == nullptr) return nullptr;
  return DoLookupService(service->GetFQN(), service->GetSvcVersion());
}

IHostServiceDescriptor* HostManager::LookupService(DataServiceDescriptor* service) {
  if (service == nullptr) return nullptr;
  return DoLookupService(service->FQN, service->SvcVersion);
}

IHostServiceDescriptor* HostManager::DoLookupService(std::string fqn, std::string version) {
  // The first entry, in list order, with both texts equal; the list keeps an
  // index for this (every constructor creates an IndexedServiceList, and the
  // field keeps the base type the exported class layout declares).
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast)
  return static_cast<internal::IndexedServiceList*>(knownServices_)->Find(fqn, version);
}

void HostManager::RegisterService(IHostServiceDescriptor* service) {
  if (service == nullptr) throw std::invalid_argument("descriptor");
  std::string fqn = service->GetFQN();
  if (fqn.empty()) throw std::invalid_argument("fqn");
  std::string version = service->GetSvcVersion();
  if (version.empty()) throw std::invalid_argument("version");

  IHostServiceDescriptor* existing = DoLookupService(std::move(fqn), std::move(version));
  if (existing == service) return;
  if (existing != nullptr) {
    knownServices_->Remove(existing);
    delete existing;
  }
  knownServices_->Add(service);
}

void HostManager::RegisterServices(std::vector<IHostServiceDescriptor*> services) {
  for (IHostServiceDescriptor* service : services) RegisterService(service);
}

std::map<std::string, TargetConfig*> HostManager::GetTargetConfigs() { return targetConfigs_; }

void HostManager::RegisterTargetConfig(TargetConfig* config) {
  targetConfigs_[config->GetId()] = config;
}

TargetConfig* HostManager::GetTargetConfig(std::string id) {
  auto found = targetConfigs_.find(id);
  return found == targetConfigs_.end() ? nullptr : found->second;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
