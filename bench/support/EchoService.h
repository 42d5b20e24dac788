#ifndef WEVLIN_BENCH_SUPPORT_ECHOSERVICE_H_
#define WEVLIN_BENCH_SUPPORT_ECHOSERVICE_H_

#include <string>

#include "wevlin/infrastructure/services/BaseHostingService.h"

namespace wevlin_bench {

// A host service that answers every method call with its payload and counts
// the calls; events are counted too. The benchmarks register one under each
// FQN they need (the host manager owns it then).
class EchoService
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService {
 public:
  EchoService(std::string fqn, std::string version);
  ~EchoService() override;

  // Returns the number of method and event calls served so far.
  long Calls() const { return calls_; }

 protected:
  std::string DoInvokeMethod(
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor,
      std::string payload) override;
  void DoInvokeEvent(
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor,
      std::string payload) override;

 private:
  long calls_ = 0;
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_ECHOSERVICE_H_
