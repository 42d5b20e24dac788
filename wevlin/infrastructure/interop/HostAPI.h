#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_HOSTAPI_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_HOSTAPI_H_

#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostManager.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The object that the application exposes to the page's script: every call
// from the page into the host enters through one of its five operations.
//
// This is the one place where failures become script results: a standard
// exception thrown while serving a call is answered with the exception record
// {"Exception": {"name": "...", "message": "..."}} instead of escaping to the
// script engine. Nothing is logged here; the page is told through the record.
//
// Ownership: the API does not own its instance, which must outlive it. The
// application creates one API per HostControlInstance.
// Threading: call it on the thread on which the browser control runs the
// page's script (the application's thread).
class WEVLIN_EXPORT HostAPI {
 public:
  // Creates the API of `instance` and takes the host manager from it. A null
  // instance gives an API that answers only pings ("Pong").
  explicit HostAPI(IHostControlInstance* instance);
  HostAPI(const HostAPI& other);
  HostAPI& operator=(const HostAPI& other);
  virtual ~HostAPI();

  // Calls the method of the host service named by `descriptorJson` ({"FQN":
  // ..., "SvcVersion": ...}) with `payload`, looked up on the instance and
  // then in the host manager. Returns the service's answer unchanged, or the
  // exception record of a failure, including a missing service:
  // "No matching service descriptor found for: <FQN> ver: <version>".
  std::string tavoHostMethod(std::string descriptorJson, std::string payload);
  // Same for an event; returns "" or an exception record.
  std::string tavoHostEvent(std::string descriptorJson, std::string payload);
  // Returns the host manager's version text, or "Pong" without a manager.
  std::string tavoHostPing();
  // Passes the page's service list to the instance (only "Replace" is
  // accepted). Returns "" or an exception record; "" without an instance.
  std::string tavoHost_WebSideServiceListUpdate(std::string action, std::string listJson);
  // Starts the handshake on the instance. Returns "" or an exception record;
  // "" without an instance.
  std::string tavoHost_WebSideStartHandShake();

 private:
  IHostServiceDescriptor* Resolve(const std::string& descriptorJson);

  IHostManager* hostManager = nullptr;
  IHostControlInstance* hostControlInstance;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_HOSTAPI_H_
