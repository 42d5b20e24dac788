#ifndef WEVLIN_EXAMPLES_DEMO_HOSTSERVICES_H_
#define WEVLIN_EXAMPLES_DEMO_HOSTSERVICES_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "BackgroundWork.h"
#include "Transcript.h"
#include "wevlin/wevlin.h"

namespace wevlin_demo {

// The demo application's side of every standard host service: one handler
// per service, each writing to the transcript what it received and what it
// answered, and keeping it for the demo's checks.
//
// The two asynchronous services (SOA requests and host logins) answer as a
// real application would: the handler returns at once, and a worker thread
// does the slow part and then calls the library's callback itself. The
// callback sends the answer to the page from that thread, which the library
// and the browser control allow; the transcript says on which thread it ran.
//
// Owns its handlers; the services made by RegisterAll belong to the host
// manager and keep pointers to them, so this object must outlive every call
// of the page and every worker. Create it on the application's thread (the
// UI thread); the handlers run there, the workers' answers on their own
// threads. What the workers touch is guarded by a lock.
class HostServices {
 public:
  // The user name that a host login signs in.
  static constexpr const char* kUserName = "demo.user";

  // The delays after which the worker threads answer.
  static constexpr int kSoaDelayMs = 120;
  static constexpr int kLoginDelayMs = 80;

  // One answer that a worker gave through the library's callback.
  struct Reply {
    // "soa" for an SOA request, "auth" for a host login.
    std::string service;
    // The SOA answer text ("" for a login).
    std::string answer;
    // Whether the callback ran on the UI thread (it should not).
    bool onUiThread = false;
  };

  HostServices(Transcript& transcript, BackgroundWork& work);
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
  // The answers the workers gave, in order, each recorded once its callback
  // has returned. Any thread.
  std::vector<Reply> Replies() const;
  // Returns Replies().size(). Any thread.
  std::size_t ReplyCount() const;
  // Whether a host login has completed. Any thread.
  bool LoggedIn() const;

 private:
  class Handlers;
  std::unique_ptr<Handlers> handlers_;
};

}  // namespace wevlin_demo

#endif  // WEVLIN_EXAMPLES_DEMO_HOSTSERVICES_H_
