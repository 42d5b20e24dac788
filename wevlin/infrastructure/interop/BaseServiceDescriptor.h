#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_BASESERVICEDESCRIPTOR_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_BASESERVICEDESCRIPTOR_H_

#include <string>

#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// A plain value descriptor: one FQN and one version, copied in at
// construction. No validation: empty texts are accepted here (the host manager
// refuses them at registration).
//
// Immutable after construction; any thread may read it.
class WEVLIN_EXPORT BaseServiceDescriptor : public ITargetServiceDesc {
 public:
  // Creates a descriptor of service `fqn` in version `version`.
  BaseServiceDescriptor(std::string fqn, std::string version);
  BaseServiceDescriptor(const BaseServiceDescriptor& other);
  BaseServiceDescriptor& operator=(const BaseServiceDescriptor& other);
  ~BaseServiceDescriptor() override;

  // Returns a copy of the FQN.
  std::string GetFQN() const override;
  // Returns a copy of the version.
  std::string GetSvcVersion() const override;

 private:
  std::string fqn_;
  std::string version_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_BASESERVICEDESCRIPTOR_H_
