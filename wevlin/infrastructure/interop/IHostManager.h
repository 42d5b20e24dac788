#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTMANAGER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTMANAGER_H_

#include <map>
#include <string>
#include <vector>

#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class DataServiceDescriptor;
class TargetConfig;

// The process-wide registry of host services and launch targets, as host
// control instances see it. See HostManager for the one implementation,
// ownership and threading.
class WEVLIN_EXPORT IHostManager {
 public:
  virtual ~IHostManager() = default;

  // Returns the version text of the hosting framework.
  virtual std::string GetVersion() = 0;
  // Returns the live list of registered host services (not a copy).
  virtual Base::IObservableList<IHostServiceDescriptor*>* KnownServices() const = 0;
  // Returns true when LookupService(service) finds a service.
  virtual bool IsServiceSupported(ITargetServiceDesc* service) = 0;
  // Returns the service registered under the FQN and version of `service`, or
  // null (also for a null argument).
  virtual IHostServiceDescriptor* LookupService(ITargetServiceDesc* service) = 0;
  // Returns the service registered under the FQN and SvcVersion of `service`,
  // or null (also for a null argument).
  virtual IHostServiceDescriptor* LookupService(DataServiceDescriptor* service) = 0;
  // Registers `service` and takes ownership of it.
  virtual void RegisterService(IHostServiceDescriptor* service) = 0;
  // Registers each service in order; the first failure stops the loop.
  virtual void RegisterServices(std::vector<IHostServiceDescriptor*> services) = 0;
  // Returns a copy of the map from id to target configuration.
  virtual std::map<std::string, TargetConfig*> GetTargetConfigs() = 0;
  // Stores `config` under its id and takes ownership of it.
  virtual void RegisterTargetConfig(TargetConfig* config) = 0;
  // Returns the configuration stored under `id`, or null.
  virtual TargetConfig* GetTargetConfig(std::string id) = 0;

 protected:
  IHostManager() = default;
  IHostManager(const IHostManager&) = default;
  IHostManager& operator=(const IHostManager&) = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTMANAGER_H_
