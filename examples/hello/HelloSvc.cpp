#include "HelloSvc.h"

#include <stdexcept>

namespace wevlin_hello {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

HelloSvc::HelloSvc() : BaseHostingService(kFqn, kVersion) {}

std::string HelloSvc::DoInvokeMethod(interop::IHostControlInstance* /*instance*/,
                                     interop::IHostServiceDescriptor* /*descriptor*/,
                                     std::string payload) {
  if (payload.empty()) throw std::invalid_argument("The greeter needs a name");
  return "Hello, " + payload + "!";
}

}  // namespace wevlin_hello
