// wevlin_hello: the smallest real wevlin host. It registers the application's
// own host service (HelloSvc) and the standard host configuration service,
// opens the bundled page (page/index.html) in a headless Chromium, serves the
// page's calls, then calls the page's version test service through its
// standard proxy, and prints what crossed. Exits with 0 when everything
// crossed as expected, 1 when something did not, 2 when the browser or a
// script failed.

#include <chrono>
#include <exception>
#include <iostream>
#include <string>

#include "HelloSvc.h"
#include "wevlin/webcontrols/chromium/ChromiumWebControl.h"
#include "wevlin/wevlin.h"

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace core02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02;
namespace core07 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07;
namespace version02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02;
namespace chromium = Com::Velmora::TAVO::Wevlin::WebControls::Chromium;

namespace {

// What the page reports it sent and got back, one line per call.
const std::string kExpectedPageLines =
    "page -> host  hello.Greeter.host _2014_07 \"newcomer\" answered Hello, newcomer!\n"
    "page -> host  hello.Greeter.host _2014_07 \"\" gave the exception record "
    "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"The greeter needs a "
    "name\"}}\n"
    "page -> host  tavo.wevlin.infrastructure.services.core.HostConfiguration.host _2014_07 \"\" "
    "answered {\"Version\": \"_2014_07\", \"Settings\": [{\"Key\": \"greeting.language\", "
    "\"Value\": \"en\"}]}";
// What the page's version test service answers the host's proxy.
const std::string kExpectedReply =
    "{\"Version\": \"_2014_02\", \"ServiceName\": "
    "\"tavo.wevlin.infrastructure.services.version.TestVersionSvc\", \"ServiceVersion\": "
    "\"_2014_02\"}";

// The application's side of the standard host configuration service.
class Settings : public core07::IHandleHostConfigurationSvc {
 public:
  Settings() { answer_.Settings.emplace_back("greeting.language", "en"); }
  const core07::HostConfigurationResponseMsg& GetHostConfiguration(
      interop::IHostControlInstance*, interop::IHostServiceDescriptor*) override {
    return answer_;
  }

 private:
  core07::HostConfigurationResponseMsg answer_;
};

}  // namespace

int main() {
  Settings settings;  // outlives the service that uses it
  interop::HostManager* manager = interop::HostManager::TheInstance();
  // The manager owns what is registered with it. The startup notification
  // service is what moves a page to LoggedIn.
  manager->RegisterServices({new wevlin_hello::HelloSvc(),
                             new core07::HostConfigurationSvc(&settings),
                             new core02::StartupNotificationSvc()});
  manager->RegisterTargetConfig(new interop::TargetConfig(
      "hello", "Hello page", std::string("file://") + WEVLIN_HELLO_PAGE_DIR + "/index.html"));

  try {
    chromium::ChromiumWebControl control;  // starts a headless Chromium
    interop::HostControlInstance instance(&control);
    interop::HostAPI api(&instance);
    control.SetHostAPI(&api);  // the page reaches it as globalThis.wevlinHost
    instance.LaunchToTarget(manager->GetTargetConfig("hello"));

    // Serve the page's calls until it has logged in and made its own calls.
    const bool done = control.RunUntil(
        [&] {
          return instance.GetContentState() == interop::LoggedIn &&
                 control.ExecuteScript("hello.done") == "true";
        },
        std::chrono::seconds(30));
    if (!done) {
      std::cerr << "wevlin_hello: the page did not finish within 30 s; its state is "
                << interop::HostControlInstance::NameOfState(instance.GetContentState()) << "\n";
      return 1;
    }
    const std::string pageLines = control.ExecuteScript("hello.seen.join('\\n')");
    std::cout << pageLines << "\n";

    // Call the page through a standard proxy.
    version02::TestVersionProxy proxy(&instance);
    const std::string reply = proxy.GetClientServiceVersion().ToJsonString();
    std::cout << "host -> page  TestVersionProxy::GetClientServiceVersion() returned " << reply
              << "\n";

    control.SetHostAPI(nullptr);
    if (pageLines != kExpectedPageLines || reply != kExpectedReply) {
      std::cerr << "wevlin_hello: not what should have crossed; expected\n"
                << kExpectedPageLines << "\nand the reply " << kExpectedReply << "\n";
      return 1;
    }
    std::cout << "All calls crossed as expected.\n";
    return 0;
  } catch (const interop::IWebControl::ScriptException& error) {
    std::cerr << "wevlin_hello: a script failed: " << error.message << " (" << error.details
              << ")\n";
  } catch (const std::exception& error) {
    std::cerr << "wevlin_hello: " << error.what() << "\n";
  }
  return 2;
}
