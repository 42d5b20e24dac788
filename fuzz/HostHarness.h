#ifndef WEVLIN_FUZZ_HOSTHARNESS_H_
#define WEVLIN_FUZZ_HOSTHARNESS_H_

#include <cstddef>
#include <memory>
#include <string>

#include "support/StandardServiceHandlers.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/testing/ScriptedPage.h"

namespace wevlin_fuzz {

// One hosted page for one fuzz input, built fresh and torn down completely so
// that inputs cannot influence each other and nothing leaks: a fresh host
// manager with the standard host services registered (each with a handler
// kept here), a scripted page, a HostControlInstance on it and the HostAPI the
// page calls. The time-out timers run on the simulated clock and manual queue
// of the unit tests, so no real timer ever fires.
//
// Registered: host configuration "_2014_02" and "_2014_07", startup
// notification, client status, asynchronous SOA messages, host session info,
// host authentication requests, session, refresh and log forwarding. The
// version test services are left out: they check their callers with debug
// assertions on purpose, which a hostile page trips in a build with
// assertions.
//
// The asynchronous SOA and host-authentication handlers keep every request
// pending until the harness answers it (AnswerSoa, AnswerAuth); the
// destructor answers what is still pending, while the instance lives, so
// that every request's record is freed by its callback.
//
// Use it on one thread; only one harness may exist at a time (it replaces
// the process-wide host manager while it lives).
class HostHarness {
 public:
  HostHarness();
  ~HostHarness();
  HostHarness(const HostHarness&) = delete;
  HostHarness& operator=(const HostHarness&) = delete;

  Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage& Page() { return page_; }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance& Instance() {
    return *instance_;
  }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI& Api() { return *api_; }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig& Target() { return target_; }

  // Launches the instance, completes the page load and lets the page start
  // the handshake. Returns what the host API answered the page.
  std::string Talk();

  // Return how many requests wait for their answer.
  std::size_t PendingSoaCalls() const;
  std::size_t PendingAuthCalls() const;

  // Answer the oldest pending request through its callback, with an error
  // record made of `errorName` and `errorMessage` (no error when both are
  // empty). Return false when none is pending.
  bool AnswerSoa(const std::string& answer, const std::string& errorName,
                 const std::string& errorMessage);
  bool AnswerAuth(bool authenticated, const std::string& errorName,
                  const std::string& errorMessage);

 private:
  wevlin_test::TimerEnvironmentScope env_;
  Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage page_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig target_{"app", "App",
                                                                            "https://app.example/"};
  wevlin_test::StandardServiceHandlers handlers_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostManager* previousManager_ = nullptr;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>
      instance_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI> api_;
};

}  // namespace wevlin_fuzz

#endif  // WEVLIN_FUZZ_HOSTHARNESS_H_
