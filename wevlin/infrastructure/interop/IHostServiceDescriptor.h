#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTSERVICEDESCRIPTOR_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTSERVICEDESCRIPTOR_H_

#include "wevlin/infrastructure/interop/IHostServiceInteraction.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// A service that the host offers to the page and that can be invoked.
//
// Registered with the HostManager (process-wide) or with one
// HostControlInstance; whoever it is registered with deletes it when another
// object is registered under the same FQN and version. Deleting the
// descriptor ends its interaction object too (they are usually one object).
class WEVLIN_EXPORT IHostServiceDescriptor : public ITargetServiceDesc {
 public:
  // Returns the object through which the service is invoked.
  virtual IHostServiceInteraction* GetInteraction() const = 0;

 protected:
  IHostServiceDescriptor() = default;
  IHostServiceDescriptor(const IHostServiceDescriptor&) = default;
  IHostServiceDescriptor& operator=(const IHostServiceDescriptor&) = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTSERVICEDESCRIPTOR_H_
