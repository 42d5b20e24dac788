#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_WEBSIDESERVICEDESCRIPTOR_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_WEBSIDESERVICEDESCRIPTOR_H_

#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class DataServiceDescriptor;

// Descriptor of a service that the page's script offers. The host control
// instance creates one for every entry of the list the page announces, and
// owns it. Immutable after construction.
class WEVLIN_EXPORT WebSideServiceDescriptor : public BaseServiceDescriptor {
 public:
  // Copies the FQN and the version out of `data` and keeps no reference to it.
  // Precondition: `data` is not null (not checked).
  explicit WebSideServiceDescriptor(DataServiceDescriptor* data);
  ~WebSideServiceDescriptor() override;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_WEBSIDESERVICEDESCRIPTOR_H_
