#include "wevlin/infrastructure/services/BaseServiceProxy.h"

#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {
namespace {

Interop::ITargetServiceDesc* CopyDescriptor(const Interop::ITargetServiceDesc* source) {
  return new Interop::BaseServiceDescriptor(source->GetFQN(), source->GetSvcVersion());
}

}  // namespace

BaseServiceProxy::BaseServiceProxy(Interop::IHostControlInstance* instance, const std::string& fqn,
                                   const std::string& version)
    : instance_(instance), targetDescriptor_(new Interop::BaseServiceDescriptor(fqn, version)) {}

BaseServiceProxy::BaseServiceProxy(const BaseServiceProxy& other)
    : instance_(other.instance_), targetDescriptor_(CopyDescriptor(other.targetDescriptor_)) {}

BaseServiceProxy& BaseServiceProxy::operator=(const BaseServiceProxy& other) {
  if (this != &other) {
    Interop::ITargetServiceDesc* copy = CopyDescriptor(other.targetDescriptor_);
    delete targetDescriptor_;
    targetDescriptor_ = copy;
    instance_ = other.instance_;
  }
  return *this;
}

BaseServiceProxy::~BaseServiceProxy() {
  instance_ = nullptr;
  delete targetDescriptor_;
}

Interop::ITargetServiceDesc* BaseServiceProxy::GetBaseServiceDescriptor() const {
  return targetDescriptor_;
}

Interop::IHostControlInstance* BaseServiceProxy::GetHostControlInstance() const {
  return instance_;
}

bool BaseServiceProxy::IsTargetServiceAvailable() const {
  if (instance_ == nullptr) return false;
  if (instance_->GetKnownWebSideServices()->GetSize() < 1) return false;
  const std::string fqn = targetDescriptor_->GetFQN();
  const std::string version = targetDescriptor_->GetSvcVersion();
  // The list is asked for again at every step, as the page may replace it.
  for (int i = 0; i < instance_->GetKnownWebSideServices()->GetSize(); ++i) {
    Interop::ITargetServiceDesc* entry = instance_->GetKnownWebSideServices()->GetAt(i);
    if (entry->GetFQN() == fqn && entry->GetSvcVersion() == version) return true;
  }
  return false;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services
