#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_HOSTMANAGER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_HOSTMANAGER_H_

#include <map>
#include <string>
#include <vector>

#include "wevlin/infrastructure/base/ObservableList.h"
#include "wevlin/infrastructure/interop/IHostManager.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

namespace internal {
class HostManagerTestPeer;
}  // namespace internal

// The process-wide registry of the native application: the host services that
// every hosted control offers to its page, and the launch targets a control
// can be sent to. Reached through TheInstance().
//
// Ownership: the manager owns every service passed to RegisterService and
// every configuration passed to RegisterTargetConfig; never delete them. A
// service is deleted when a different object is registered under the same FQN
// and version. A configuration replaced under the same id is NOT deleted: it
// goes back to the caller. The manager itself is never destroyed.
//
// Threading: not thread-safe. Fill it and read it on the application's user
// interface thread, the thread on which hosted controls call into it. The
// first TheInstance() call must happen before any other thread may call it.
// An application that needs the manager from several threads must put its own
// lock around registration and lookup.
class WEVLIN_EXPORT HostManager : public IHostManager {
 public:
  // Returns the single manager, creating it on the first call.
  static HostManager* TheInstance();

  HostManager(const HostManager& other);
  HostManager& operator=(const HostManager& other);

  // Returns "0.9", the version of the hosting framework.
  std::string GetVersion() override;
  // Returns the known-services list itself; observe it to hear of
  // registrations, read it with GetSize/GetAt.
  Base::IObservableList<IHostServiceDescriptor*>* KnownServices() const override;
  // Returns true when LookupService(service) is not null.
  bool IsServiceSupported(ITargetServiceDesc* service) override;
  // Returns the first registered service whose FQN and version equal those of
  // `service` exactly (case-sensitive), or null. Null yields null. The list is
  // indexed, so the cost does not grow with the number of services; a
  // registered service's GetFQN and GetSvcVersion must therefore keep
  // answering the same texts while it is registered.
  IHostServiceDescriptor* LookupService(ITargetServiceDesc* service) override;
  // Same, with the FQN and SvcVersion fields of a wire descriptor.
  IHostServiceDescriptor* LookupService(DataServiceDescriptor* service) override;
  // Registers `service` and takes ownership of it. Throws
  // std::invalid_argument "descriptor" for null, "fqn" for an empty FQN,
  // "version" for an empty version, in that order, before any change.
  // Registering the same object again does nothing. Registering another object
  // under the same FQN and version removes the earlier one from the list (a
  // removal event), deletes it, then appends the new one (an addition event).
  void RegisterService(IHostServiceDescriptor* service) override;
  // Calls RegisterService for each element in order; the first exception stops
  // the loop and propagates, leaving earlier registrations in place.
  void RegisterServices(std::vector<IHostServiceDescriptor*> services) override;
  // Returns a copy of the id-to-configuration map (pointers shared).
  std::map<std::string, TargetConfig*> GetTargetConfigs() override;
  // Stores `config` under config->GetId() and takes ownership of it. A
  // configuration already stored under that id is replaced and is neither
  // deleted nor returned. Precondition: `config` is not null.
  void RegisterTargetConfig(TargetConfig* config) override;
  // Returns the configuration stored under `id` (exact key), or null.
  TargetConfig* GetTargetConfig(std::string id) override;

 private:
  friend class internal::HostManagerTestPeer;

  HostManager();
  ~HostManager() override;

  IHostServiceDescriptor* DoLookupService(std::string fqn, std::string version);

  Base::ObservableList<IHostServiceDescriptor*>* knownServices_;
  std::map<std::string, TargetConfig*> targetConfigs_;

  static HostManager* m_instance;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_HOSTMANAGER_H_
