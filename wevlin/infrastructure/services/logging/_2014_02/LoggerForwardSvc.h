#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_LOGGING_2014_02_LOGGERFORWARDSVC_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_LOGGING_2014_02_LOGGERFORWARDSVC_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerEntryMsg.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02 {

// Host service "tavo.wevlin.infrastructure.services.LoggerForward.host" (no
// area word in the name), version "_2014_02": writes the page's log entries
// into the application's log by calling a plain function with each
// LoggerEntryMsg. The page may call it as a method, answered "OK" or "FAIL"
// (plain text, not JSON), or raise it as an event, not answered.
//
// Nothing thrown by the forwarding function leaves the service. A payload that
// does not read as an entry is dropped without calling the function (and a
// method call is still answered "OK").
//
// Ownership: the function is the service's only member. Threading: called on
// the thread that drives the browser control, and so is the function.
class WEVLIN_EXPORT LoggerForwardSvc : public BaseHostingService {
 public:
  // The application's log function; `entry` is valid only during the call.
  using ForwardFunction = void (*)(const LoggerEntryMsg& entry);

  // Creates the service around `forward`. Precondition: `forward` is not null.
  explicit LoggerForwardSvc(ForwardFunction forward);
  LoggerForwardSvc(const LoggerForwardSvc& other);
  LoggerForwardSvc& operator=(const LoggerForwardSvc& other);
  ~LoggerForwardSvc() override;

 protected:
  // Reads `payload` as an entry and, when it reads, forwards it. Returns "OK",
  // also for a payload that does not read, and "FAIL" when anything was thrown
  // while forwarding.
  std::string DoInvokeMethod(Interop::IHostControlInstance* instance,
                             Interop::IHostServiceDescriptor* descriptor,
                             std::string payload) override;
  // Reads `payload` as an entry and, when it reads, forwards it. Anything
  // thrown is caught and dropped.
  void DoInvokeEvent(Interop::IHostControlInstance* instance,
                     Interop::IHostServiceDescriptor* descriptor, std::string payload) override;

 private:
  // Forwards the entry in `payload` if it reads; exceptions of the function
  // pass through.
  void Forward(const std::string& payload) const;

  ForwardFunction forward_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_LOGGING_2014_02_LOGGERFORWARDSVC_H_
