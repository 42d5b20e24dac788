#include "support/HostCleanup.h"

#include <vector>

#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"

namespace wevlin_test {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;

void DestroyHostControlInstance(std::unique_ptr<interop::HostControlInstance>& instance) {
  if (!instance) return;
  base::IObservableList<interop::IHostServiceDescriptor*>* own = instance->KnownServices();
  instance.reset();
  for (int i = 0; i < own->GetSize(); ++i) delete own->GetAt(i);
  delete own;
}

void RestoreHostManager(interop::HostManager* previous) {
  base::IObservableList<interop::IHostServiceDescriptor*>* known =
      interop::HostManager::TheInstance()->KnownServices();
  std::vector<interop::IHostServiceDescriptor*> services;
  for (int i = 0; i < known->GetSize(); ++i) services.push_back(known->GetAt(i));
  interop::internal::HostManagerTestPeer::Restore(previous);
  for (interop::IHostServiceDescriptor* service : services) delete service;
}

}  // namespace wevlin_test
