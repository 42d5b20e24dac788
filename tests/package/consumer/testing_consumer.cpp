// An application's own test, written with the installed test kit
// (wevlin::testing) and no test framework: a ScriptedPage plays the page of a
// real HostControlInstance. The page logs in through the standard startup
// service, calls a host service of the application, and the application
// calls a service of the page through the instance.
//
// Prints one line per check and ends with "testing consumer: ok", or names
// what differed and exits with 1.

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"
#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"
#include "wevlin/testing/ScriptedPage.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;

// What one check saw, printed at the end.
struct Outcome {
  std::string what;
  std::string actual;
  std::string expected;
};

std::vector<Outcome> outcomes;

void Expect(std::string what, std::string actual, std::string expected) {
  outcomes.push_back(Outcome{std::move(what), std::move(actual), std::move(expected)});
}

// The application's host service under test: counts the items of an order
// and refuses an empty one.
class OrderService : public services::BaseHostingService {
 public:
  OrderService() : BaseHostingService("app.shop.Order.host", "1") {}

 protected:
  std::string DoInvokeMethod(interop::IHostControlInstance* /*instance*/,
                             interop::IHostServiceDescriptor* /*descriptor*/,
                             std::string payload) override {
    if (payload.empty()) throw std::invalid_argument("empty order");
    return "items:" + std::to_string(payload.size());
  }
};

}  // namespace

int main() {
  try {
    interop::HostManager::TheInstance()->RegisterService(
        new services::Core::_2014_02::StartupNotificationSvc());
    OrderService orders;
    ScriptedPage page;
    std::string banner;
    page.RegisterEvent("app.shop.Banner.client", "1",
                       [&banner](const std::string& payload) { banner = payload; });
    {
      interop::HostControlInstance instance(&page);
      instance.RegisterService(&orders);
      interop::HostAPI api(&instance);
      page.ConnectHost(&api);
      interop::TargetConfig target("shop", "Shop", "https://shop.example/");

      page.LogIn(instance, target);
      Expect("state after LogIn",
             interop::HostControlInstance::NameOfState(instance.GetContentState()), "LoggedIn");
      Expect("the order service answers the page",
             page.CallHostMethod("app.shop.Order.host", "1", "abc"), "items:3");
      Expect("an empty order is refused with an exception record",
             page.CallHostMethod("app.shop.Order.host", "1", ""),
             R"({"Exception": {"name": "std::invalid_argument", "message": "empty order"}})");
      interop::BaseServiceDescriptor bannerService("app.shop.Banner.client", "1");
      page.ClearRecords();
      instance.InvokeWebEvent(&bannerService, "sale");
      Expect("the page's event handler got the payload", banner, "sale");
      Expect(
          "the script line the host ran", page.Scripts().empty() ? "" : page.Scripts()[0],
          R"(tavoInterop_WebEvent('{"FQN": "app.shop.Banner.client", "SvcVersion": "1"}','sale');)");
      page.ConnectHost(nullptr);
    }
  } catch (const std::exception& e) {
    std::cout << "FAIL " << e.what() << "\n";
    return 1;
  }
  int failed = 0;
  for (const Outcome& outcome : outcomes) {
    const bool ok = outcome.actual == outcome.expected;
    std::cout << (ok ? "ok   " : "FAIL ") << outcome.what << "\n";
    if (!ok) {
      ++failed;
      std::cout << "     got  " << outcome.actual << "\n     want " << outcome.expected << "\n";
    }
  }
  if (failed != 0) {
    std::cout << "testing consumer: " << failed << " of " << outcomes.size() << " checks FAILED\n";
    return 1;
  }
  std::cout << "testing consumer: ok\n";
  return 0;
}
