#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTSERVICEINTERACTION_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTSERVICEINTERACTION_H_

#include <string>

#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

class IHostControlInstance;
class IHostServiceDescriptor;

// The invocation side of a host service: how a call from the page reaches it.
//
// An interaction object is never deleted through this interface (it has no
// virtual destructor on purpose): it is owned, and deleted, through its
// IHostServiceDescriptor side.
//
// Called on the thread on which the browser control runs the page's script.
class WEVLIN_EXPORT IHostServiceInteraction {
 public:
  // Answers a request from the page. `instance` is the host control instance
  // through which the call arrived, `descriptor` the descriptor the call was
  // resolved to, `payload` the page's text (usually JSON). Returns the answer
  // text. Exceptions pass to the caller, which reports them to the page.
  virtual std::string InvokeMethod(IHostControlInstance* instance,
                                   IHostServiceDescriptor* descriptor, std::string payload) = 0;

  // Receives a one-way notification from the page. Arguments as for
  // InvokeMethod.
  virtual void InvokeEvent(IHostControlInstance* instance, IHostServiceDescriptor* descriptor,
                           std::string payload) = 0;

 protected:
  IHostServiceInteraction() = default;
  IHostServiceInteraction(const IHostServiceInteraction&) = default;
  IHostServiceInteraction& operator=(const IHostServiceInteraction&) = default;
  ~IHostServiceInteraction() = default;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_IHOSTSERVICEINTERACTION_H_
