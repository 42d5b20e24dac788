#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_TARGETCONFIG_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_TARGETCONFIG_H_

#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// A launch target: a named location that a host control can be sent to.
//
// The HostManager owns the configurations registered with it. A plain value
// with no virtual operations; not thread-safe.
class WEVLIN_EXPORT TargetConfig {
 public:
  // Creates a target with key `id`, display name `name` (kept, not
  // interpreted) and location `target` (the URL text navigated to).
  TargetConfig(std::string id, std::string name, std::string target);
  TargetConfig(const TargetConfig& other);
  TargetConfig& operator=(const TargetConfig& other);
  ~TargetConfig();

  // Returns a copy of the id.
  std::string GetId();
  // Returns a copy of the display name.
  std::string GetName();
  // Returns a copy of the location.
  std::string GetTarget();

 private:
  std::string id_;
  std::string name_;
  std::string target_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_TARGETCONFIG_H_
