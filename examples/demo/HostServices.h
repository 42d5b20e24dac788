#ifndef WEVLIN_EXAMPLES_DEMO_HOSTSERVICES_H_
#define WEVLIN_EXAMPLES_DEMO_HOSTSERVICES_H_

#include <memory>
#include <string>
#include <vector>

#include "BackgroundWork.h"
#include "Transcript.h"
#include "UiThreadQueue.h"
#include "wevlin/wevlin.h"

namespace wevlin_demo {

// The demo application's side of every standard host service: one handler
// per service, each writing to the transcript what it received and what it
// answered, and keeping it for the demo's checks.
//
// The two asynchronous services (SOA requests and host logins) answer as a
// real application would: the handler returns at once, a worker thread does
// the slow part, and the answer goes back through the library's callback on
// the application's thread (posted to the UiThreadQueue), because the
// callback calls into the page and the browser control belongs to that
// thread.
//
// Owns its handlers; the services made by RegisterAll belong to the host
// manager and keep pointers to them, so this object must outlive every call
// of the page. Everything but the worker threads runs on the application's
// thread.
class HostServices {
 public:
  // The user name that a host login signs in.
  static constexpr const char* kUserName = "demo.user";

  // The delays after which the worker threads answer.
  static constexpr int kSoaDelayMs = 120;
  static constexpr int kLoginDelayMs = 80;

  HostServices(Transcript& transcript, UiThreadQueue& uiThread, BackgroundWork& work);
  HostServices(const HostServices&) = delete;
  HostServices& operator=(const HostServices&) = delete;
  ~HostServices();

  // Creates every standard host service on this object's handlers and
  // registers it with `manager`, which owns it from then on. Returns them in
  // the order of registration.
  std::vector<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor*>
  RegisterAll(Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostManager* manager);

  // What the handlers answer and received, for the demo's checks.
  std::string Configuration2014_02Json() const;
  std::string Configuration2014_07Json() const;
  const std::vector<std::string>& ClientStates() const;
  const std::vector<std::string>& LogEntries() const;
  const std::vector<std::string>& Sessions() const;
  const std::vector<std::string>& Refreshes() const;
  // The answers the SOA worker gave, in order.
  const std::vector<std::string>& SoaAnswers() const;
  // Whether a host login has completed.
  bool LoggedIn() const;

 private:
  class Handlers;
  std::unique_ptr<Handlers> handlers_;
};

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_HOSTSERVICES_H_
