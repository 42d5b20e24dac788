#include "support/EchoService.h"

#include <utility>

namespace wevlin_bench {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

EchoService::EchoService(std::string fqn, std::string version)
    : BaseHostingService(std::move(fqn), std::move(version)) {}

EchoService::~EchoService() = default;

std::string EchoService::DoInvokeMethod(interop::IHostControlInstance* /*instance*/,
                                        interop::IHostServiceDescriptor* /*descriptor*/,
                                        std::string payload) {
  ++calls_;
  return payload;
}

void EchoService::DoInvokeEvent(interop::IHostControlInstance* /*instance*/,
                                interop::IHostServiceDescriptor* /*descriptor*/,
                                std::string /*payload*/) {
  ++calls_;
}

}  // namespace wevlin_bench
