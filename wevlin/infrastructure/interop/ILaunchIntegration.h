#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_ILAUNCHINTEGRATION_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_ILAUNCHINTEGRATION_H_

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class TargetConfig;

// Launching hosted content to a target. The first four operations of every
// host control instance. Called on the application's thread of the control.
class WEVLIN_EXPORT ILaunchIntegration {
 public:
  // Returns whether the control holds active content.
  virtual bool GetActiveContent() const = 0;
  // Sends the control to `target`; with `force` false an active content is
  // kept and false returned. Returns true when a launch started.
  virtual bool LaunchToTarget(TargetConfig* target, bool force) = 0;
  // Same as LaunchToTarget(target, true).
  virtual void LaunchToTarget(TargetConfig* target) = 0;
  // Returns the target of the last launch, or null (not owned).
  virtual TargetConfig* GetActiveTarget() const = 0;

 protected:
  ILaunchIntegration() = default;
  ILaunchIntegration(const ILaunchIntegration&) = default;
  ILaunchIntegration& operator=(const ILaunchIntegration&) = default;
  ~ILaunchIntegration() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_ILAUNCHINTEGRATION_H_
