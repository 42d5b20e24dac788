#ifndef WEVLIN_BENCH_SUPPORT_HOSTEDWORLD_H_
#define WEVLIN_BENCH_SUPPORT_HOSTEDWORLD_H_

#include <memory>
#include <string>

#include "support/InstantPage.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"

namespace wevlin_bench {

// One hosted page as an application sets it up, for the dispatch and scale
// benchmarks: a host manager of its own holding `services` echo services, an
// InstantPage, a HostControlInstance on it that has finished the handshake
// (state LoadedCanTalk) and the HostAPI the page would call.
//
// Each world installs a fresh process-wide host manager when it is created
// and leaves it installed: host control instances bind to the manager that is
// current at their construction, so instances made while a world is the
// newest belong to it, and worlds made one after another stay independent.
// Destroying a world ends its instance, API and page; its manager and
// services stay, as an application's do, until the process ends.
//
// The echo service the benchmarks call is the last one registered, so a
// lookup that walks the services in order meets all others first. Diagnostic
// lines of the library are discarded while worlds exist (SilenceLog).
// Single-threaded.
class HostedWorld {
 public:
  // Builds a world with `services` host services (at least 1).
  explicit HostedWorld(int services);
  ~HostedWorld();

  HostedWorld(const HostedWorld&) = delete;
  HostedWorld& operator=(const HostedWorld&) = delete;

  // Returns the world for `services`, built on first use and kept.
  static HostedWorld& Shared(int services);

  // Sends the library's diagnostic lines nowhere from now on.
  static void SilenceLog();

  // The wire descriptor of the echo service, as the page sends it.
  const std::string& EchoDescriptorJson() const { return echoDescriptorJson_; }

  // The page's own echo service, as the host names it.
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::BaseServiceDescriptor& PageEcho() {
    return pageEcho_;
  }

  InstantPage& Page() { return *page_; }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance& Instance() {
    return *instance_;
  }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI& Api() { return *api_; }

  // Returns the number of services of this world's manager.
  int ServiceCount() const;

 private:
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostManager* manager_;
  std::string echoDescriptorJson_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::BaseServiceDescriptor pageEcho_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig target_;
  std::unique_ptr<InstantPage> page_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>
      instance_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI> api_;
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_HOSTEDWORLD_H_
