#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_BASEHOSTINGSERVICE_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_BASEHOSTINGSERVICE_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/IHostServiceInteraction.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

// Base of every host service: a native object that the page's script calls by
// FQN and version. It is at once the service's descriptor (so it can be
// registered with the HostManager or one HostControlInstance) and its
// invocation object.
//
// A concrete service passes its wire name and version to the constructor and
// overrides DoInvokeMethod, DoInvokeEvent or both. The defaults answer every
// method with the empty text and ignore every event.
//
// Ownership: whoever the service is registered with owns it. Deleting it
// through IHostServiceDescriptor* ends the interaction object too (one object).
// Threading: invoked on the thread that runs the page's script.
class WEVLIN_EXPORT BaseHostingService : public Interop::IHostServiceDescriptor,
                                         public Interop::IHostServiceInteraction {
 public:
  // Creates a service named `fqn` in version `version`, both unchecked (the
  // host manager refuses empty ones at registration).
  BaseHostingService(std::string fqn, std::string version);
  BaseHostingService(const BaseHostingService& other);
  BaseHostingService& operator=(const BaseHostingService& other);
  ~BaseHostingService() override;

  // Returns a copy of the FQN.
  std::string GetFQN() const override;
  // Returns a copy of the version.
  std::string GetSvcVersion() const override;
  // Returns this object seen as its interaction.
  Interop::IHostServiceInteraction* GetInteraction() const override;

 protected:
  // Answers a method call; the default returns the empty text.
  virtual std::string DoInvokeMethod(Interop::IHostControlInstance* instance,
                                     Interop::IHostServiceDescriptor* descriptor,
                                     std::string payload);
  // Receives an event; the default does nothing.
  virtual void DoInvokeEvent(Interop::IHostControlInstance* instance,
                             Interop::IHostServiceDescriptor* descriptor, std::string payload);

 public:
  // (Declared after the two protected hooks so that the table of virtual
  // operations keeps the order: destructor, GetFQN, GetSvcVersion,
  // GetInteraction, DoInvokeMethod, DoInvokeEvent.)
  // Passes the call to DoInvokeMethod and returns its answer unchanged.
  // Exceptions pass through.
  std::string InvokeMethod(Interop::IHostControlInstance* instance,
                           Interop::IHostServiceDescriptor* descriptor,
                           std::string payload) override;
  // Passes the call to DoInvokeEvent. Exceptions pass through.
  void InvokeEvent(Interop::IHostControlInstance* instance,
                   Interop::IHostServiceDescriptor* descriptor, std::string payload) override;

 private:
  std::string fqn_;
  std::string version_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_BASEHOSTINGSERVICE_H_
