#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_BASESERVICEPROXY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_BASESERVICEPROXY_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

// Base of every host-side proxy to a service that the page's script
// implements. A proxy is bound to one host control instance (the page it talks
// to) and to one target service, named by FQN and version. Concrete proxies
// add typed send operations that write a message and call InvokeWebMethod or
// InvokeWebEvent on the instance.
//
// Ownership: the proxy owns its target descriptor and not its instance; the
// instance must outlive every call made through the proxy. Copies are
// independent: each copy gets a descriptor of its own (with the same FQN and
// version) and shares the instance, so copies may be destroyed in any order.
//
// Threading: use a proxy on the thread that drives its browser control.
class WEVLIN_EXPORT BaseServiceProxy {
 public:
  // Binds a proxy to `instance` (may be null: the proxy then sends nothing)
  // and to the page service `fqn` in version `version`.
  BaseServiceProxy(Interop::IHostControlInstance* instance, const std::string& fqn,
                   const std::string& version);
  BaseServiceProxy(const BaseServiceProxy& other);
  BaseServiceProxy& operator=(const BaseServiceProxy& other);
  // Deletes the target descriptor; the instance is left alone.
  virtual ~BaseServiceProxy();

  // Returns the target descriptor, still owned by the proxy.
  Interop::ITargetServiceDesc* GetBaseServiceDescriptor() const;

  // Returns true when the page has announced a service whose FQN and version
  // equal the target's exactly (case-sensitive). False without an instance or
  // before the page has announced any service. The host manager's services
  // play no part: the question is what the page offers.
  bool IsTargetServiceAvailable() const;

 protected:
  // Returns the instance the proxy talks to, or null.
  Interop::IHostControlInstance* GetHostControlInstance() const;

 private:
  Interop::IHostControlInstance* instance_;
  Interop::ITargetServiceDesc* targetDescriptor_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_BASESERVICEPROXY_H_
