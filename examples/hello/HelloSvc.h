#ifndef WEVLIN_EXAMPLES_HELLO_HELLOSVC_H_
#define WEVLIN_EXAMPLES_HELLO_HELLOSVC_H_

#include <string>

#include "wevlin/wevlin.h"

namespace wevlin_hello {

// The hello application's own host service "hello.Greeter.host", version
// "_2014_07": a method that greets the name the page sends as its payload
// (plain text) with the answer "Hello, <name>!". An empty name is refused with
// std::invalid_argument "The greeter needs a name", which reaches the page as
// an exception record.
//
// Whoever the service is registered with owns it. Called on the thread that
// drives the browser control.
class HelloSvc : public Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService {
 public:
  static constexpr const char* kFqn = "hello.Greeter.host";
  static constexpr const char* kVersion = "_2014_07";

  HelloSvc();

 protected:
  // Returns "Hello, <payload>!"; throws std::invalid_argument for an empty
  // payload.
  std::string DoInvokeMethod(
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance* instance,
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor* descriptor,
      std::string payload) override;
};

}  // namespace wevlin_hello

#endif  // WEVLIN_EXAMPLES_HELLO_HELLOSVC_H_
