#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTCONTROLINSTANCE_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTCONTROLINSTANCE_H_

#include <string>

#include "wevlin/infrastructure/base/INotifyPropertyChange.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ILaunchIntegration.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class DataServiceDescriptor;
class IHostManager;

// What services and proxies see of the host control instance of one browser
// control: its state, its service lists, and calls into the page. The one
// implementation is HostControlInstance, which documents the behaviour,
// ownership and threading of each operation.
//
// Property changes ("ContentState", "WebSideVersion", "InstanceDestroyed")
// are announced through the INotifyPropertyChange base.
class WEVLIN_EXPORT IHostControlInstance : public ILaunchIntegration,
                                           public Base::INotifyPropertyChange {
 public:
  // Returns the process-wide host manager the instance uses.
  virtual IHostManager* GetGlobalConfig() const = 0;
  // Returns the version text that the page returned to the last ping.
  virtual std::string GetWebSideVersion() const = 0;
  // Returns the services that the page announced (owned by the instance).
  virtual Base::IObservableList<ITargetServiceDesc*>* GetKnownWebSideServices() const = 0;
  // Takes in the page's service list; only the action "Replace" is accepted.
  virtual std::string WebSideServiceListUpdate(std::string action, std::string listJson) = 0;
  // Starts the handshake on the page's request.
  virtual void WebSideStartHandShake() = 0;
  // Calls method `service` of the page with `payload`; returns its answer.
  virtual std::string InvokeWebMethod(ITargetServiceDesc* service, std::string payload) = 0;
  // Raises event `service` of the page with `payload`.
  virtual void InvokeWebEvent(ITargetServiceDesc* service, std::string payload) = 0;
  // Returns the current content state.
  virtual HostContentState GetContentState() = 0;
  // Sets the content state, announcing "ContentState" when it changes.
  virtual void SetContentState(HostContentState state) = 0;
  // Returns true when LookupService(service) finds a service.
  virtual bool IsServiceSupported(ITargetServiceDesc* service) = 0;
  // Looks a host service up on this instance, then in the host manager.
  virtual IHostServiceDescriptor* LookupService(ITargetServiceDesc* service) = 0;
  // Same, with the FQN and SvcVersion fields of a wire descriptor.
  virtual IHostServiceDescriptor* LookupService(DataServiceDescriptor* service) = 0;
  // Registers a host service on this instance alone.
  virtual void RegisterService(IHostServiceDescriptor* service) = 0;
  // Returns the host services registered on this instance alone.
  virtual Base::IObservableList<IHostServiceDescriptor*>* KnownServices() const = 0;

 protected:
  IHostControlInstance() = default;
  IHostControlInstance(const IHostControlInstance&) = default;
  IHostControlInstance& operator=(const IHostControlInstance&) = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTCONTROLINSTANCE_H_
