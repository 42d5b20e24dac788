#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_HOSTMANAGERTESTPEER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_HOSTMANAGERTESTPEER_H_

#include "wevlin/infrastructure/interop/HostManager.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// Gives tests a fresh host manager without changing the public contract of the
// process-wide singleton. Not part of the installed interface.
//
// Tests call InstallFresh() in their set-up: it makes TheInstance() return a
// new, empty manager and returns the one it replaced; Restore() puts that one
// back and destroys the fresh manager (its target configurations and list,
// not the services still registered, exactly as the manager's destructor
// does). Call both on the test's main thread, with no other thread inside the
// library.
class HostManagerTestPeer {
 public:
  static HostManager* InstallFresh() {
    HostManager* previous = HostManager::m_instance;
    HostManager::m_instance = new HostManager();
    return previous;
  }

  static void Restore(HostManager* previous) {
    delete HostManager::m_instance;
    HostManager::m_instance = previous;
  }

  static HostManager* NewManager() { return new HostManager(); }
  static void DeleteManager(HostManager* manager) { delete manager; }
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_HOSTMANAGERTESTPEER_H_
