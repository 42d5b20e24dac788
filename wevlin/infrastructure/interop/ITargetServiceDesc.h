#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_ITARGETSERVICEDESC_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_ITARGETSERVICEDESC_H_

#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// Identifies a service by its fully qualified name (FQN) and its version.
//
// Both texts are opaque and compared byte for byte, case-sensitively: two
// descriptors denote the same service exactly when both texts are equal. There
// is no ordering of versions and no fallback from one version to another.
//
// Implementations are immutable values; any thread may read them.
class WEVLIN_EXPORT ITargetServiceDesc {
 public:
  virtual ~ITargetServiceDesc() = default;

  // Returns the fully qualified name, e.g.
  // "tavo.wevlin.infrastructure.services.core.HostConfiguration.host".
  virtual std::string GetFQN() const = 0;

  // Returns the version text, e.g. "_2014_07".
  virtual std::string GetSvcVersion() const = 0;

 protected:
  ITargetServiceDesc() = default;
  ITargetServiceDesc(const ITargetServiceDesc&) = default;
  ITargetServiceDesc& operator=(const ITargetServiceDesc&) = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_ITARGETSERVICEDESC_H_
