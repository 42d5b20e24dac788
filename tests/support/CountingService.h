#ifndef WEVLIN_TESTS_SUPPORT_COUNTINGSERVICE_H_
#define WEVLIN_TESTS_SUPPORT_COUNTINGSERVICE_H_

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"

namespace wevlin_test {

class CountingService;

// One call that reached a CountingService through InvokeMethod or
// InvokeEvent, with the arguments exactly as the service received them.
struct ServiceCall {
  enum Kind { kMethod, kEvent };

  Kind kind;
  // The service that received the call. Compare it, never dereference it: the
  // service may have been deleted since.
  const CountingService* service;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor;
  std::string payload;
};

// What a group of CountingService objects reports to its test. The test owns
// the probe and passes it to each service by pointer; it must outlive every
// service that reports to it. Because the probe is not part of the services,
// it stays readable after their owner (a host manager, a host control
// instance) has deleted them.
struct ServiceProbe {
  // How many reporting services have been destroyed so far.
  int destroyed = 0;
  // Every call that reached any reporting service, in arrival order.
  std::vector<ServiceCall> calls;
};

// A host service for tests, built on BaseHostingService exactly as a real
// service is. It
//   - counts its destruction in its probe (so a test can tell whether, and how
//     often, whoever owns the service deleted it);
//   - records every call (in Calls() and in the probe), before answering;
//   - answers a method call with the text set by SetAnswer (empty by default),
//     or with what a handler set by SetMethodHandler returns;
//   - can be told to throw a given exception from every call
//     (ThrowOnInvoke), which lets a test check how callers pass failures on.
//
// A test creates it with new and, as with any host service, whoever it is
// registered with owns it afterwards. Not thread-safe; use it on the test's
// thread.
class CountingService
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService {
 public:
  using Instance = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
  using Descriptor = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
  using MethodHandler =
      std::function<std::string(Instance* instance, Descriptor* descriptor, const std::string&)>;
  using EventHandler =
      std::function<void(Instance* instance, Descriptor* descriptor, const std::string&)>;

  // Creates service `fqn` in version `version` (neither is checked). `probe`
  // may be null; otherwise it receives the calls and the destruction.
  CountingService(std::string fqn, std::string version, ServiceProbe* probe = nullptr);
  ~CountingService() override;

  // Sets the answer of every later method call that has no handler.
  void SetAnswer(std::string answer);

  // Makes every later method call run `handler` (after recording the call) and
  // answer with its result. An empty function restores SetAnswer's answer.
  void SetMethodHandler(MethodHandler handler);

  // Makes every later event run `handler` after recording it.
  void SetEventHandler(EventHandler handler);

  // Makes every later method call and event throw `exception` (after
  // recording the call). A copy is taken now and rethrown each time. Any
  // copyable type may be thrown, standard exception or not; its exact type is
  // kept, so callers can be checked by type and by what().
  template <typename E>
  void ThrowOnInvoke(const E& exception) {
    failure_ = std::make_exception_ptr(exception);
  }

  // Ends ThrowOnInvoke: later calls answer normally.
  void StopThrowing();

  // Returns the calls this service has received, in order.
  const std::vector<ServiceCall>& Calls() const;

 protected:
  std::string DoInvokeMethod(Instance* instance, Descriptor* descriptor,
                             std::string payload) override;
  void DoInvokeEvent(Instance* instance, Descriptor* descriptor, std::string payload) override;

 private:
  void Record(ServiceCall::Kind kind, Instance* instance, Descriptor* descriptor,
              const std::string& payload);

  ServiceProbe* probe_;
  std::string answer_;
  MethodHandler methodHandler_;
  EventHandler eventHandler_;
  std::exception_ptr failure_;
  std::vector<ServiceCall> calls_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_COUNTINGSERVICE_H_
